#include "AnimationExport.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "NodePlace.h"

namespace {

constexpr double UNTOLD_RATE = 30;
constexpr const char* UNTOLD_NAME = "animation";    // without one, some programs pass an animation over

/// Frames from `first` to `last`, of which `origin` is time 0.
struct Clip {
    std::string name;
    int first, last, origin;
};

std::vector<Clip> ClipsOf(const C3DScene& scene, int firstFrame)
{
    constexpr int FIRST = std::numeric_limits<int>::min(), LAST = std::numeric_limits<int>::max();
    CXArray<CXTString<wchar_t>> names;
    scene.GetCustomData().GetStringArray(SCENE_CLIP_NAMES, names);
    unsigned int size;
    const auto* ranges = static_cast<const int*>(scene.GetCustomData().GetData(SCENE_CLIP_RANGES, size));
    std::vector<Clip> clips;
    for (int i = 0; ranges && i < names.GetSize() && 2 * static_cast<std::size_t>(i + 1) * sizeof(int) <= size; i++) {
        const int first = ranges[2 * i];
        if (!clips.empty() && first <= clips.back().first)
            return {{UNTOLD_NAME, FIRST, LAST, std::min(firstFrame, 0)}};    // not the rows that they should be
        if (!clips.empty())
            clips.back().last = first - 1;
        clips.push_back({WideToUtf8(names[i]), i > 0 ? first : FIRST, LAST, i > 0 ? first : std::min(firstFrame, 0)});
    }
    if (clips.empty())
        clips.push_back({UNTOLD_NAME, FIRST, LAST, std::min(firstFrame, 0)});
    return clips;
}

aiVector3D ToVector(const C3DTVector<float>& vector) { return {vector.x, vector.y, vector.z}; }

// The library's quaternion turns the other way round its axis than a rotation key does.
aiQuaternion ToQuaternion(const C3DRotateKey& key)
{
    double angle;
    C3DTVector<float> axis = key.GetRotation(angle);
    axis.Normalize();
    const double sine = -std::sin(angle / 2);
    return {static_cast<float>(std::cos(angle / 2)), static_cast<float>(axis.x * sine), static_cast<float>(axis.y * sine),
            static_cast<float>(axis.z * sine)};
}

template <class KEY> void MoveTo(const std::vector<KEY>& keys, KEY*& array, unsigned int& count)
{
    count = static_cast<unsigned int>(keys.size());
    array = new KEY[count];
    std::ranges::copy(keys, array);
}

/// The keys of one node in one clip.
class Track {
public:
    Track(const C3DSceneNode& node, const Clip& clip, double frames, bool together)
        : m_node(node), m_clip(clip), m_frames(frames), m_together(together)
    {
    }

    /// Null when the clip has no key of the node.
    std::unique_ptr<aiNodeAnim> Build(LossLog& losses)
    {
        const NodePlace place(m_node);
        place.IsPlain() && !m_together ? TakeKeys() : TakeSamples(place, losses);
        if (m_isEmpty)
            return nullptr;
        auto to = std::make_unique<aiNodeAnim>();
        to->mNodeName = aiString(WideToUtf8(m_node.GetName()));
        MoveTo(m_positions, to->mPositionKeys, to->mNumPositionKeys);
        MoveTo(m_rotations, to->mRotationKeys, to->mNumRotationKeys);
        MoveTo(m_scales, to->mScalingKeys, to->mNumScalingKeys);
        return to;
    }

private:
    bool IsInClip(int time) const { return m_clip.first <= time && time <= m_clip.last; }
    double TimeOf(int frame) const { return (frame - m_clip.origin) / m_frames; }

    /// Hands each key of a class in the clip to `take(frame, key)`; where there is none, `rest()` stands for it.
    template <class KEY, class TAKE> void ForKeys(KEY& rest, TAKE take)
    {
        bool any = false;
        for (unsigned int i = 0, count = static_cast<unsigned int>(m_node.GetKeyNbr(rest.GetClassID())); i < count; i++) {
            int time;
            const auto* key = static_cast<const KEY*>(m_node.GetKeyByIndex(i, &time, rest.GetClassID()));
            if (!IsInClip(time))
                continue;
            take(time, *key);
            any = true;
        }
        m_isEmpty &= !any;
        if (!any) {
            m_node.Evaluate(m_clip.origin, rest);
            take(m_clip.origin, rest);
        }
    }

    void TakeKeys()
    {
        C3DTranslateKey translation;
        C3DRotateKey rotation;
        C3DScaleKey scale;
        ForKeys(translation, [&](int time, const auto& key) { m_positions.emplace_back(TimeOf(time), ToVector(key.GetVector())); });
        ForKeys(rotation, [&](int time, const auto& key) { m_rotations.emplace_back(TimeOf(time), ToQuaternion(key)); });
        ForKeys(scale, [&](int time, const auto& key) { m_scales.emplace_back(TimeOf(time), ToVector(key.GetVector())); });
    }

    void TakeSamples(const NodePlace& place, LossLog& losses)
    {
        std::vector<int> times;
        for (unsigned int i = 0, count = static_cast<unsigned int>(m_node.GetKeyNbr(KEY_ANY)); i < count; i++)
            if (int time; m_node.GetKeyByIndex(i, &time, KEY_ANY) && IsInClip(time) && (times.empty() || times.back() != time))
                times.push_back(time);
        bool hasShear = false;
        for (const int time : times) {
            const aiMatrix4x4 matrix = place.At(time);
            aiVector3D scale, position;
            aiQuaternion rotation;
            matrix.Decompose(scale, rotation, position);
            hasShear |= !aiMatrix4x4(scale, rotation, position).Equal(matrix, 1e-3f * std::max(1.0f, scale.Length()));
            if (!m_rotations.empty() && Dot(m_rotations.back().mValue, rotation) < 0)    // the same, the short way
                rotation = aiQuaternion(-rotation.w, -rotation.x, -rotation.y, -rotation.z);
            m_positions.emplace_back(TimeOf(time), position);
            m_rotations.emplace_back(TimeOf(time), rotation);
            m_scales.emplace_back(TimeOf(time), scale);
        }
        m_isEmpty = times.empty();
        if (hasShear)
            losses.Add(LOSS_SHEAR);
    }

    static float Dot(const aiQuaternion& a, const aiQuaternion& b) { return a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z; }

    const C3DSceneNode& m_node;
    const Clip& m_clip;
    const double m_frames;    // a tick
    const bool m_together;
    std::vector<aiVectorKey> m_positions, m_scales;
    std::vector<aiQuatKey> m_rotations;
    bool m_isEmpty = true;
};

std::unique_ptr<aiAnimation> AnimationOf(const std::vector<C3DSceneNode*>& nodes, const Clip& clip, double rate, const ExportFormat& format,
                                         LossLog& losses)
{
    auto to = std::make_unique<aiAnimation>();
    to->mName = aiString(clip.name);
    to->mTicksPerSecond = format.Can(TIMES_IN_SECONDS) ? 1 : rate;
    std::vector<std::unique_ptr<aiNodeAnim>> tracks;
    for (const C3DSceneNode* node : nodes)
        if (auto track = Track(*node, clip, rate / to->mTicksPerSecond, format.Can(KEYS_TOGETHER)).Build(losses)) {
            const auto last = [](const auto* keys, unsigned int count) { return count > 0 ? keys[count - 1].mTime : 0; };
            to->mDuration =
                std::max({to->mDuration, last(track->mPositionKeys, track->mNumPositionKeys),
                          last(track->mRotationKeys, track->mNumRotationKeys), last(track->mScalingKeys, track->mNumScalingKeys)});
            tracks.push_back(std::move(track));
        }
    to->mNumChannels = static_cast<unsigned int>(tracks.size());
    to->mChannels = new aiNodeAnim*[tracks.size()];
    std::ranges::transform(tracks, to->mChannels, [](auto& track) { return track.release(); });
    return to;
}

}

std::vector<std::unique_ptr<aiAnimation>> ExportAnimations(const C3DScene& scene, const ExportFormat& format, LossLog& losses)
{
    std::vector<C3DSceneNode*> nodes;
    int firstFrame = 0;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;)
        if (C3DSceneNode* node = scene.GetNextNode(pos); IsAnimated(*node)) {
            nodes.push_back(node);
            firstFrame = std::min(firstFrame, node->GetTimeRange(KEY_ANY).start);
        }
    std::vector<std::unique_ptr<aiAnimation>> animations;
    if (!format.Can(CAN_KEYS)) {
        losses.Add(LOSS_KEYS, nodes.size());
        return animations;
    }
    if (nodes.empty())
        return animations;
    double rate;
    scene.GetCustomData().GetDouble(SCENE_FRAME_RATE, rate, UNTOLD_RATE);
    for (const Clip& clip : ClipsOf(scene, firstFrame))
        if (auto animation = AnimationOf(nodes, clip, rate > 0 ? rate : UNTOLD_RATE, format, losses); animation->mNumChannels > 0)
            animations.push_back(std::move(animation));
    return animations;
}
