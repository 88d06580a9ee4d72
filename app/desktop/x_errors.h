// X protocol errors as ordinary answers. Xlib's default handler ends the
// process on any of them, and freeglut ends it when one of its start-up
// requests fails; yet a desktop makes requests fail with nothing wrong: a
// window manager that died leaves the root window naming a check window that
// is gone, a window can vanish between two calls.
#pragma once

// glutInit with an X error handler installed first: from then on an X error
// fails the request that caused it (said on standard error with --verbose)
// instead of ending the process, and freeglut's complaint about such a failed
// request during glutInit is let pass (it then finds no window manager). Its
// other errors end the process as freeglut does. Xlib's handling of a lost
// connection stays as it is.
void glutInitOnAnyDesktop(int* argc, char** argv);
