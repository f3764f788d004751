#include "render/View.h"

unsigned int C3DView::SelectNodesFromRect(CXArray<C3DSceneNode*>&, unsigned int, unsigned int, unsigned int, unsigned int, GLSelectMode,
                                          unsigned int)
{
    return 0;
}
unsigned int C3DView::SelectFacesFromRect(CXArray<C3DSceneNode*>&, unsigned int, unsigned int, unsigned int, unsigned int, GLSelectMode,
                                          unsigned int)
{
    return 0;
}
unsigned int C3DView::SelectPointsFromRect(CXArray<C3DSceneNode*>&, unsigned int, unsigned int, unsigned int, unsigned int, GLSelectMode,
                                           unsigned int)
{
    return 0;
}
