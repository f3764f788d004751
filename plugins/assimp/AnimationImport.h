#pragma once

#include <map>
#include <string>
#include <vector>

#include <3dzel.h>

struct aiAnimation;
struct aiNode;
struct aiNodeAnim;
struct aiScene;

/// The animations of a file as keys of nodes.
///
/// The first animation keeps its times; each further one begins on the frame behind the one before. The frame rate is one in which the key
/// times are whole frames wherever there is one: the file's own, a usual one, any other up to 1000. Without such a rate keys go to the nearest
/// frame, of a rate that keeps them apart.
///
/// An animated node has translation, rotation and scale keys in place of its matrix. It rests in the animations that are not about it.
class AnimationImport {
public:
    explicit AnimationImport(const aiScene& source);

    bool IsAnimated(const aiNode& node) const { return m_tracks.count(&node) != 0; }
    void AddKeys(const aiNode& from, C3DSceneNode& node) const;
    /// Rate, names and ranges into the scene's custom data; nothing without animation.
    void Describe(C3DScene& scene) const;

private:
    struct Clip {
        const aiAnimation* animation;
        double ticksPerSecond;
        CTimeRange range;    ///< frames in the scene
        int shift;           ///< from the animation's own frames to these
    };
    struct Track {
        std::size_t clip;
        const aiNodeAnim* keys;
    };

    void FindTracks(const aiScene& source);
    void ChooseRate();
    bool IsRateExact(double rate) const;
    bool IsRateApart(double rate) const;
    void PlaceClips();
    int FrameOf(const Clip& clip, double ticks) const;
    template <class VISIT> bool AllTimes(VISIT visit) const;

    std::vector<Clip> m_clips;
    std::map<const aiNode*, std::vector<Track>> m_tracks;
    double m_rate = 30;
    bool m_rateKnown = false;
};
