// A WebGL context the browser takes away (a reset of the graphics driver, too
// many contexts, a test's WEBGL_lose_context) is asked back. The show runs on
// meanwhile, unseen, and the page says so; when the browser gives the context
// back, gl11 makes its objects again and the show draws on. A browser that
// never gives it back leaves the page saying that the show cannot be seen.
#pragma once

// Follows the losses of the canvas's context (the current one).
void followContextLoss();
