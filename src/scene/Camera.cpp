#include "scene/Camera.h"

#include <bit>
#include <cstdint>

#include "scene/3DObject.h"
#include "tools/FourCC.h"

ZEL_IMPLEMENT_CREATABLE(C3DCamera, C3DBaseObject)

static constexpr unsigned int CAMERA_APERTURE = FourCC("caap");
static constexpr unsigned int CAMERA_ASPECT_RATIO = FourCC("caar");
static constexpr unsigned int CAMERA_FAR_CLIP = FourCC("cafc");
static constexpr unsigned int CAMERA_NEAR_CLIP = FourCC("canc");
static constexpr unsigned int CAMERA_FOCUS_DISTANCE = FourCC("cafd");
static constexpr unsigned int CAMERA_FOV = FourCC("cafo");
static constexpr unsigned int CAMERA_ZOOM = FourCC("cazm");
static constexpr unsigned int CAMERA_PROJECTION_KEY = FourCC("capj");
static constexpr unsigned int CAMERA_TARGET = FourCC("catg");

C3DCamera::C3DCamera() : C3DBaseObject(OBJECT_CAMERA) { SetFlag(OBJECT_WIREFRAME_ONLY, true); }

C3DCamera::C3DCamera(const C3DCamera& other) : C3DBaseObject(other) {}

C3DCamera::~C3DCamera() { DeleteMe(m_display); }

unsigned int C3DCamera::GetChecksum(unsigned int) const
{
    unsigned int sum = static_cast<unsigned int>(GetProjection()) << 4;
    for (const double value : {GetAperture(), GetFocusDistance(), GetFov(), GetAspectRatio(), GetZoom()}) {
        if (value != 0)
            sum += static_cast<unsigned int>(std::bit_cast<std::uint64_t>(value));
    }
    return sum;
}

C3DBaseObject* C3DCamera::GetFinalObject(bool)
{
    if (!m_display)
        m_display = GenerateDisplayable();
    return m_display;
}

static double GetParameter(const C3DBaseObject& camera, unsigned int key, double fallback)
{
    double value;
    camera.GetCustomData().GetDouble(key, value, fallback);
    return value;
}

static int GetParameter(const C3DBaseObject& camera, unsigned int key, int fallback)
{
    int value;
    camera.GetCustomData().GetInt(key, value, fallback);
    return value;
}

double C3DCamera::GetAperture() const { return GetParameter(*this, CAMERA_APERTURE, 8.0); }
void C3DCamera::SetAperture(double aperture) { GetCustomData().SetDouble(CAMERA_APERTURE, aperture); }

double C3DCamera::GetAspectRatio() const { return GetParameter(*this, CAMERA_ASPECT_RATIO, 1.0); }
void C3DCamera::SetAspectRatio(double ratio) { GetCustomData().SetDouble(CAMERA_ASPECT_RATIO, ratio); }

double C3DCamera::GetFarClip() const { return GetParameter(*this, CAMERA_FAR_CLIP, 1000.0); }
void C3DCamera::SetFarClip(double distance) { GetCustomData().SetDouble(CAMERA_FAR_CLIP, distance); }

double C3DCamera::GetNearClip() const { return GetParameter(*this, CAMERA_NEAR_CLIP, 0.001); }
void C3DCamera::SetNearClip(double distance) { GetCustomData().SetDouble(CAMERA_NEAR_CLIP, distance); }

void C3DCamera::SetNearFarClip(double nearDistance, double farDistance)
{
    SetNearClip(nearDistance);
    SetFarClip(farDistance);
}

double C3DCamera::GetFocusDistance() const { return GetParameter(*this, CAMERA_FOCUS_DISTANCE, 0.0); }
void C3DCamera::SetFocusDistance(double distance) { GetCustomData().SetDouble(CAMERA_FOCUS_DISTANCE, distance); }

double C3DCamera::GetFov() const { return GetParameter(*this, CAMERA_FOV, 45.0); }
void C3DCamera::SetFov(double fov) { GetCustomData().SetDouble(CAMERA_FOV, fov); }

double C3DCamera::GetZoom() const { return GetParameter(*this, CAMERA_ZOOM, 1.0); }
void C3DCamera::SetZoom(double zoom) { GetCustomData().SetDouble(CAMERA_ZOOM, zoom); }

int C3DCamera::GetProjection() const { return GetParameter(*this, CAMERA_PROJECTION_KEY, static_cast<int>(CAMERA_PERSPECTIVE)); }
void C3DCamera::SetProjection(int projection) { GetCustomData().SetInt(CAMERA_PROJECTION_KEY, projection); }

int C3DCamera::GetTarget() const { return GetParameter(*this, CAMERA_TARGET, -1); }
void C3DCamera::SetTarget(int nodeID) { GetCustomData().SetInt(CAMERA_TARGET, nodeID); }

bool C3DCamera::HasTarget() const { return IsDefined(CAMERA_TARGET); }

bool C3DCamera::IsDefined(unsigned int key) const { return GetCustomData().HasData(key); }
