#include "channels/VCFaceList.h"

#include "channels/ChannelFaceList.h"

ZEL_IMPLEMENT_CREATABLE(CVCFaceList, CFaceList)

CVCFaceList::CVCFaceList(const CVCFaceList* model) : CFaceList(model)
{
    if (!model)
        AddFaceProperties(*this);
}

CVCFaceList::~CVCFaceList() = default;

CVCFaceList* CVCFaceList::Create(const CVCFaceList* model) { return new CVCFaceList(model); }

CVCFace* CVCFaceList::CreateFace() { return new CVCFace; }
