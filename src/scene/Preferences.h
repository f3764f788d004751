#pragma once

#include <mutex>

#include "channels/NormalMode.h"
#include "tools/Array.h"
#include "tools/CustomData.h"
#include "tools/String.h"

/// Process-wide settings, kept in 3dprefs.prefs in the user's settings folder.
///
/// One instance, loaded at first use. Every accessor holds the lock for its whole length and may be called on any thread.
/// Setters do not write the file; Save does.
class ZEL_API C3DPreferences {
public:
    static C3DPreferences& Get3DPreferences();

    C3DPreferences(const C3DPreferences&) = delete;
    C3DPreferences& operator=(const C3DPreferences&) = delete;
    virtual ~C3DPreferences();

    /// False when there is nowhere to write or the disk refuses.
    bool Save() const;

    /// Radians; 31 degrees unless set.
    float GetSmoothAngle() const;
    /// Ignored outside 0 to 180.005 degrees.
    void SetSmoothAngle(float angle);
    /// Area weighted unless set.
    _NormalSmoothMode GetSmoothMode() const;
    /// 0 is ignored.
    void SetSmoothMode(_NormalSmoothMode mode);
    /// Level of subdivision of patches; 1 unless set.
    unsigned int GetPatchLevel() const;
    void SetPatchLevel(unsigned int level);

    /// Folders in which textures are looked for, whatever the scene. The size of the array.
    int GetTexturePaths(CXArray<CXTString<wchar_t>>& paths, bool append) const;
    void SetTexturePaths(const CXArray<CXTString<wchar_t>>& paths);

    /// Options of other subjects: a fixed number of bytes under an id. False, with nothing copied, when absent or of
    /// another size.
    bool GetBinaryData(unsigned int id, void* data, unsigned int size) const;
    void SetBinaryData(unsigned int id, const void* data, unsigned int size);

protected:
    C3DPreferences();

    mutable std::mutex m_lock;
    unsigned int m_initialised = 0;
    CCustomData m_bag;
};
