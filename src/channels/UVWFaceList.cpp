#include "channels/UVWFaceList.h"

#include "channels/ChannelFaceList.h"

ZEL_IMPLEMENT_CREATABLE(CUVWFaceList, CFaceList)

CUVWFaceList::CUVWFaceList(const CUVWFaceList* model) : CFaceList(model)
{
    if (!model)
        AddFaceProperties(*this);
}

CUVWFaceList::~CUVWFaceList() = default;

CUVWFaceList* CUVWFaceList::Create(const CUVWFaceList* model) { return new CUVWFaceList(model); }

CUVWFace* CUVWFaceList::CreateFace() { return new CUVWFace; }
