#pragma once

#include "scene/BaseObject.h"

enum CAMERA_PROJECTION : int { CAMERA_PERSPECTIVE = 0, CAMERA_ORTHOGRAPHIC = 1 };

/// Camera at its node's origin, looking along +y with +z up.
///
/// The parameters live in the custom data, where an absent key means the default: they travel with copies and files, and setters report
/// no change. Animation is that of the node.
class ZEL_API C3DCamera : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DCamera)
public:
    C3DCamera();
    /// Without a display object: the copy makes its own.
    C3DCamera(const C3DCamera& other);

    /// Of aperture, focus distance, field of view, aspect ratio, zoom and projection.
    unsigned int GetChecksum(unsigned int mode) const override;
    /// The polygon object that shows the camera, of a fixed size, made at the first call and kept whatever changes later. Its own.
    C3DBaseObject* GetFinalObject(bool detach) override;

    double GetAperture() const;
    void SetAperture(double aperture);
    double GetAspectRatio() const;    ///< width over height
    void SetAspectRatio(double ratio);
    double GetFarClip() const;
    void SetFarClip(double distance);
    double GetNearClip() const;
    void SetNearClip(double distance);
    void SetNearFarClip(double nearDistance, double farDistance);
    double GetFocusDistance() const;
    void SetFocusDistance(double distance);
    double GetFov() const;    ///< horizontal field of view, as the display object takes it in radians; 45 unless set
    void SetFov(double fov);
    double GetZoom() const;    ///< of an orthographic view
    void SetZoom(double zoom);
    int GetProjection() const;    ///< CAMERA_PROJECTION; any value but 0 is orthographic
    void SetProjection(int projection);
    int GetTarget() const;    ///< id of the node that the camera looks at, -1 for none
    void SetTarget(int nodeID);
    bool HasTarget() const;    ///< one has been set, -1 included
    /// The parameter of that key has been set.
    bool IsDefined(unsigned int key) const;

protected:
    ~C3DCamera() override;

private:
    C3DObject* GenerateDisplayable() const;

    C3DObject* m_display = nullptr;
};
