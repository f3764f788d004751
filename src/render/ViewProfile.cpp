#include "render/ViewProfile.h"

#include "render/View.h"

unsigned int GetViewProfile(_VIEW_PROFILE) { return 0; }
void SetViewProfile(_VIEW_PROFILE, unsigned int) {}
void C3DView::LoadDefaultSettings() {}
void C3DView::SaveDefaultSettings() {}
