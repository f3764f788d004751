#pragma once

class C3DScene;

/// The two modes of SliceScene. Each tells whether there was anything to do.
bool SplitObjects(C3DScene& scene, unsigned int mostPoints);
bool ColourObjects(C3DScene& scene, unsigned int nx, unsigned int ny, unsigned int nz);
