#include "channels/WeightFaceList.h"

#include "channels/ChannelFaceList.h"

ZEL_IMPLEMENT_CREATABLE(CWeightFaceList, CFaceList)

CWeightFaceList::CWeightFaceList(const CWeightFaceList* model) : CFaceList(model)
{
    if (!model)
        AddFaceProperties(*this);
}

CWeightFaceList::~CWeightFaceList() = default;

CWeightFaceList* CWeightFaceList::Create(const CWeightFaceList* model) { return new CWeightFaceList(model); }

CWeightFace* CWeightFaceList::CreateFace() { return new CWeightFace; }
