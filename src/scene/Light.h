#pragma once

#include "scene/BaseObject.h"
#include "tools/Color.h"

enum LIGHT_KIND : int { LIGHT_DIRECTIONAL = 0, LIGHT_OMNI = 1, LIGHT_SPOT = 2 };

/// Light at its node's origin, shining along +y.
///
/// The parameters live in the custom data, where an absent key means the default. Angles are radians, radii scene units.
class ZEL_API C3DLight : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DLight)
public:
    C3DLight();
    /// Without a display object: the copy makes its own.
    C3DLight(const C3DLight& other);

    /// The polygon object that shows the light, of a fixed size, made at the first call and kept whatever changes later. Its own; null
    /// for an unknown kind.
    C3DBaseObject* GetFinalObject(bool detach) override;

    int GetLightKind() const;    ///< LIGHT_KIND
    void SetLightKind(int kind);
    CRGBColor GetColor() const;
    void SetColor(const CRGBColor& color);
    double GetIntensity() const;    ///< 1 unless set
    void SetIntensity(double intensity);
    double GetInnerAngle() const;    ///< of a spot's cone of full light
    void SetInnerAngle(double angle);
    double GetOuterAngle() const;    ///< of the whole cone, pi / 6 unless set
    void SetOuterAngle(double angle);
    double GetInnerRadius() const;    ///< where the light begins to fade
    void SetInnerRadius(double radius);
    double GetOuterRadius() const;    ///< where it ends
    void SetOuterRadius(double radius);
    /// Removes both radii.
    void ClearAttenuation();

protected:
    ~C3DLight() override;

private:
    C3DObject* GenerateDirectionalLight() const;
    C3DObject* GenerateOmniLight() const;
    C3DObject* GenerateSpotLight() const;

    C3DObject* m_display = nullptr;
};
