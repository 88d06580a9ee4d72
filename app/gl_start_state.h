// The OpenGL state every demo part starts from: depth test, line width 1,
// colour-material tracking of ambient and diffuse for both faces, lighting,
// back faces culled with clockwise front faces, black clear colour. Shared by
// the show's start-up, the inspection tool and the GL tests.
#pragma once

void setStartGlState();
