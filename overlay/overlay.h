// Overlays: a texture drawn as one rectangle blended into the frame, as a rule
// after the scene has been rendered.
//
// Corners are in a 640 x 480 layout: the origin moves by (-320, -240), so with
// an identity modelview the point (320, 240) lies on the view axis, x grows to
// the right and y upwards; the quad lies in the plane at depth `z`. It goes
// through the current projection and modelview matrices, whatever they are.
// The image stands upright when y1 is above y0: its top row along the y1 edge,
// its left column along the x0 edge. Corners may come in either order.
//
// The texel colour is the texture modulated by the current colour, which the
// overlay does not set; the texture's alpha plays no part.
//
// Both turn off fog, depth test, culling, lighting and alpha test while drawing,
// and leave: culling on (back faces, clockwise front faces), lighting, depth test
// and colour material on, blending off with their blend function still set,
// GL_TEXTURE_2D on with `texture` bound (linear filters, GL_MODULATE), fog and
// alpha test off.
#pragma once

#include "resources/texture.h"

// Frame x (1 - texel colour): white texels make the frame black, black texels leave it.
void drawOverlayDarken(Texture* texture, int x0, int y0, int x1, int y1, int z);
// Frame + texel colour, saturating at full intensity.
void drawOverlayAdd(Texture* texture, int x0, int y0, int x1, int y1, int z);
