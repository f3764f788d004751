#pragma once

#include <mutex>

#include "channels/NormalMode.h"
#include "tools/Array.h"
#include "tools/CustomData.h"
#include "tools/String.h"

class GlViewSettings;

/// Process-wide settings, kept in 3dprefs.prefs in the user's settings folder.
///
/// One instance, loaded at first use. Every accessor holds the lock for its whole length and may be called on any thread.
/// Setters do not write the file; Save does. A file that is damaged gives the standard values.
class ZEL_API C3DPreferences {
public:
    static C3DPreferences& Get3DPreferences();

    C3DPreferences(const C3DPreferences&) = delete;
    C3DPreferences& operator=(const C3DPreferences&) = delete;
    virtual ~C3DPreferences();

    /// Writes the file when something in it is to change. A damaged file is kept beside, under another name. False when there is nowhere to
    /// write or the disk refuses: all values stay, and the next call tries again.
    bool Save() const;
    /// What went wrong with the file when it was read; empty for nothing.
    CXTString<wchar_t> GetWarning() const;

    /// Radians; 31 degrees unless set.
    float GetSmoothAngle() const;
    /// Ignored outside 0 to 180.005 degrees.
    void SetSmoothAngle(float angle);
    /// Area weighted unless set.
    _NormalSmoothMode GetSmoothMode() const;
    /// 0 is ignored.
    void SetSmoothMode(_NormalSmoothMode mode);
    /// Level of subdivision of patches, 1 unless set, at most C3DPatch::MOST_LEVEL.
    unsigned int GetPatchLevel() const;
    void SetPatchLevel(unsigned int level);

    /// Of the slanted points of view, radians; 30 degrees unless set.
    float GetViewAngle() const;
    /// Ignored unless it is a number.
    void SetViewAngle(float angle);

    /// Folders in which textures are looked for, whatever the scene. The size of the array.
    int GetTexturePaths(CXArray<CXTString<wchar_t>>& paths, bool append) const;
    void SetTexturePaths(const CXArray<CXTString<wchar_t>>& paths);
    /// The same for the files of LightWave scenes.
    int GetLWPaths(CXArray<CXTString<wchar_t>>& paths, bool append) const;
    void SetLWPaths(const CXArray<CXTString<wchar_t>>& paths);

    // Saved points of view, by numbers of the host's; 0 is the default one (render/PreferencesView.cpp)

    /// Whether there is one of that very number.
    bool HasDefaultGLViewSettings(unsigned int id) const;
    /// Presets the record (standard view flags, front) and takes view flags, view number and, for a custom point of view, the matrix of that
    /// number, else of the default one. The change mask names what counts. False when there is neither.
    bool GetDefaultGLViewSettings(GlViewSettings& settings, unsigned int id) const;
    void SetDefaultGLViewSettings(const GlViewSettings& settings, unsigned int id);
    void RemoveDefaultGLViewSettings(unsigned int id);

    /// Options of other subjects: a fixed number of bytes under an id. False, with nothing copied, when absent or of
    /// another size.
    bool GetBinaryData(unsigned int id, void* data, unsigned int size) const;
    void SetBinaryData(unsigned int id, const void* data, unsigned int size);

protected:
    C3DPreferences();

    mutable std::mutex m_lock;
    unsigned int m_initialised = 0;
    CCustomData m_bag;

private:
    int GetPaths(unsigned int key, CXArray<CXTString<wchar_t>>& paths, bool append) const;
    /// Sets one value under the lock.
    template <class SETTER, class... ARGUMENTS> void Change(SETTER setter, unsigned int key, const ARGUMENTS&... arguments)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        (m_bag.*setter)(key, arguments...);
        m_changed = true;
    }

    mutable bool m_changed = false;    ///< since it was read or written
    mutable bool m_damaged = false;    ///< the file is, and not yet kept beside
    CXTString<wchar_t> m_warning;
};
