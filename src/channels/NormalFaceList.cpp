#include "channels/NormalFaceList.h"

#include "channels/ChannelFaceList.h"

ZEL_IMPLEMENT_CREATABLE(CNormalFaceList, CFaceList)

CNormalFaceList::CNormalFaceList(const CNormalFaceList* model) : CFaceList(model)
{
    if (!model)
        AddFaceProperties(*this);
}

CNormalFaceList::~CNormalFaceList() = default;

CNormalFaceList* CNormalFaceList::Create(const CNormalFaceList* model) { return new CNormalFaceList(model); }

CNormalFace* CNormalFaceList::CreateFace() { return new CNormalFace; }
