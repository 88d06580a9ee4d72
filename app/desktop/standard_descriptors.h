// Descriptors 0, 1 and 2 are always open: a launcher may start the show with
// them closed, and the next file or connection opened would then take one of
// their numbers, so that the show's own printf (the r key, the "fps: " line)
// would write into the X connection or a capture's file.
#pragma once

// Opens /dev/null onto each of 0, 1 and 2 that is closed. First thing in
// main, before anything opens a file or a connection.
void openClosedStandardDescriptors();
