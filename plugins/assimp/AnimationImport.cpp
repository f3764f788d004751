#include "AnimationImport.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <unordered_map>
#include <utility>

#include <assimp/anim.h>
#include <assimp/scene.h>

namespace {

constexpr double UNTOLD_RATE = 25;    // of an animation that counts in ticks of unknown length
constexpr double LATEST = 1e8;        // frames; what is later is damage

bool IsUsable(double ticks, double ticksPerSecond) { return std::abs(ticks) / ticksPerSecond * 1000 < LATEST; }    // false for no number

C3DTVector<float> ToVector(const aiVector3D& from) { return {from.x, from.y, from.z}; }

C3DKeyframe* TranslateKey(const aiVector3D& value)
{
    auto* key = new C3DTranslateKey;
    key->SetVector(ToVector(value));
    return key;
}

C3DKeyframe* ScaleKey(const aiVector3D& value)
{
    auto* key = new C3DScaleKey;
    key->SetVector(ToVector(value));
    return key;
}

// A rotation key turns the other way round its axis than the library's quaternion does. The angle is worked out in double: the cosine of a
// small one says nothing in float.
C3DKeyframe* RotateKey(const aiQuaternion& value)
{
    auto* key = new C3DRotateKey;
    const double x = value.x, y = value.y, z = value.z, length = std::sqrt(x * x + y * y + z * z);
    if (length > 0 && std::isfinite(length))
        key->SetRotation(2 * std::atan2(length, static_cast<double>(value.w)),
                         {static_cast<float>(-x / length), static_cast<float>(-y / length), static_cast<float>(-z / length)});
    return key;
}

/// The keys of a node on their way: in the order of time they are appended to a list, out of it they are inserted.
class KeyCollector {
public:
    void Add(int frame, C3DKeyframe* key) { m_keys.emplace_back(frame, key); }
    void MoveTo(C3DSceneNode& node)
    {
        std::ranges::stable_sort(m_keys, {}, &std::pair<int, std::unique_ptr<C3DKeyframe>>::first);
        for (auto& [frame, key] : m_keys)
            node.AddKey(frame, key.release());
    }

private:
    std::vector<std::pair<int, std::unique_ptr<C3DKeyframe>>> m_keys;
};

}

AnimationImport::AnimationImport(const aiScene& source)
{
    for (unsigned int i = 0; i < source.mNumAnimations; i++) {
        const aiAnimation& animation = *source.mAnimations[i];
        if (animation.mNumChannels == 0)
            continue;    // of meshes alone
        const bool told = animation.mTicksPerSecond > 0 && std::isfinite(animation.mTicksPerSecond);
        m_clips.push_back({&animation, told ? animation.mTicksPerSecond : UNTOLD_RATE, {}, 0});
        m_rateKnown |= told;
    }
    FindTracks(source);
    if (m_tracks.empty())
        return;
    ChooseRate();
    PlaceClips();
}

// A track is about the first node of its name, in the order of the tree.
void AnimationImport::FindTracks(const aiScene& source)
{
    if (m_clips.empty())
        return;
    std::unordered_map<std::string, const aiNode*> nodes;
    std::vector<const aiNode*> open{source.mRootNode};
    while (!open.empty()) {
        const aiNode* node = open.back();
        open.pop_back();
        nodes.try_emplace(node->mName.C_Str(), node);
        for (unsigned int i = node->mNumChildren; i-- > 0;)
            if (node->mChildren[i])
                open.push_back(node->mChildren[i]);
    }
    for (std::size_t clip = 0; clip < m_clips.size(); clip++)
        for (unsigned int i = 0; i < m_clips[clip].animation->mNumChannels; i++) {
            const aiNodeAnim* keys = m_clips[clip].animation->mChannels[i];
            const auto found = nodes.find(keys->mNodeName.C_Str());
            if (found == nodes.end())
                continue;
            std::vector<Track>& tracks = m_tracks[found->second];
            if (tracks.empty() || tracks.back().clip != clip)    // a second one of a node has nothing to say
                tracks.push_back({clip, keys});
        }
}

/// Hands each usable key time of all tracks to `visit(clip, seconds, isFirst)`; `isFirst` begins a row of keys. False as soon as that is.
template <class VISIT> bool AnimationImport::AllTimes(VISIT visit) const
{
    const auto row = [&](const Clip& clip, const auto* keys, unsigned int count) {
        for (unsigned int i = 0; i < count; i++)
            if (IsUsable(keys[i].mTime, clip.ticksPerSecond) && !visit(clip, keys[i].mTime, i == 0))
                return false;
        return true;
    };
    for (const auto& [node, tracks] : m_tracks)
        for (const Track& track : tracks) {
            const Clip& clip = m_clips[track.clip];
            if (!row(clip, track.keys->mPositionKeys, track.keys->mNumPositionKeys) ||
                !row(clip, track.keys->mRotationKeys, track.keys->mNumRotationKeys) ||
                !row(clip, track.keys->mScalingKeys, track.keys->mNumScalingKeys))
                return false;
        }
    return true;
}

bool AnimationImport::IsRateExact(double rate) const
{
    return AllTimes([rate](const Clip& clip, double ticks, bool) {
        const double frame = ticks / clip.ticksPerSecond * rate;
        return std::abs(frame - std::round(frame)) <= 1e-3 + 1e-6 * std::abs(frame);    // times are floats in many files
    });
}

// No two keys of a row on one frame.
bool AnimationImport::IsRateApart(double rate) const
{
    double former = 0;
    return AllTimes([&](const Clip& clip, double ticks, bool isFirst) {
        const double frame = std::round(ticks / clip.ticksPerSecond * rate);
        const bool apart = isFirst || frame != former;
        former = frame;
        return apart;
    });
}

void AnimationImport::ChooseRate()
{
    std::vector<double> rates;
    for (const Clip& clip : m_clips)
        if (clip.ticksPerSecond >= 10 && clip.ticksPerSecond <= 120)    // beyond these a tick is no frame
            rates.push_back(clip.ticksPerSecond);
    rates.insert(rates.end(), {30, 24, 25, 60, 50, 48, 100, 120});
    for (int rate = 10; rate <= 1000; rate++)
        rates.push_back(rate);
    auto chosen = std::ranges::find_if(rates, [this](double rate) { return IsRateExact(rate); });
    if (chosen == rates.end()) {
        rates = {30, 60, 120, 240, 480, 960};
        chosen = std::ranges::find_if(rates, [this](double rate) { return IsRateApart(rate); });
    }
    m_rate = chosen == rates.end() ? rates.back() : *chosen;
}

void AnimationImport::PlaceClips()
{
    std::vector<bool> seen(m_clips.size());
    AllTimes([&](const Clip& clip, double ticks, bool) {
        const int frame = FrameOf(clip, ticks);    // not shifted yet
        const auto place = static_cast<std::size_t>(&clip - m_clips.data());
        CTimeRange& range = m_clips[place].range;
        range = seen[place] ? range |= {frame, frame} : CTimeRange(frame, frame);
        seen[place] = true;
        return true;
    });
    const Clip* before = nullptr;
    for (Clip& clip : m_clips) {
        if (before)
            clip.shift = before->range.end + 1 - clip.range.start;
        clip.range = {clip.range.start + clip.shift, clip.range.end + clip.shift};
        before = &clip;
    }
}

int AnimationImport::FrameOf(const Clip& clip, double ticks) const
{
    return static_cast<int>(std::lround(ticks / clip.ticksPerSecond * m_rate)) + clip.shift;
}

void AnimationImport::AddKeys(const aiNode& from, C3DSceneNode& node) const
{
    aiVector3D restScale, restTranslation;
    aiQuaternion restRotation;
    from.mTransformation.Decompose(restScale, restRotation, restTranslation);
    const std::vector<Track>& tracks = m_tracks.at(&from);
    const bool several = m_clips.size() > 1;
    KeyCollector collector;

    // The keys of one kind. In a row of animations each begins and ends with a key, so that none blends into the next.
    const auto add = [&](const Clip& clip, const auto* keys, unsigned int count, const auto& rest, auto make) {
        int first = clip.range.end, last = clip.range.start;
        C3DKeyframe* key = nullptr;
        for (unsigned int i = 0; i < count; i++) {
            if (!IsUsable(keys[i].mTime, clip.ticksPerSecond))
                continue;
            const int frame = FrameOf(clip, keys[i].mTime);
            key = make(keys[i].mValue);
            if (several && frame > clip.range.start && frame <= first)
                collector.Add(clip.range.start, key->Copy());
            first = std::min(first, frame), last = frame;
            collector.Add(frame, key);
        }
        if (!key)
            collector.Add(clip.range.start, make(rest));
        if (several && (!key || last < clip.range.end))
            collector.Add(clip.range.end, key ? key->Copy() : make(rest));
    };
    auto track = tracks.begin();
    for (std::size_t i = 0; i < m_clips.size(); i++) {
        const aiNodeAnim none;
        const aiNodeAnim& keys = track != tracks.end() && track->clip == i ? *track++->keys : none;
        add(m_clips[i], keys.mPositionKeys, keys.mNumPositionKeys, restTranslation, TranslateKey);
        add(m_clips[i], keys.mRotationKeys, keys.mNumRotationKeys, restRotation, RotateKey);
        add(m_clips[i], keys.mScalingKeys, keys.mNumScalingKeys, restScale, ScaleKey);
    }
    collector.MoveTo(node);
}

void AnimationImport::Describe(C3DScene& scene) const
{
    if (m_tracks.empty())
        return;
    CXArray<CXTString<wchar_t>> names;
    std::vector<int> ranges;
    for (const Clip& clip : m_clips) {
        names.SetAtGrow(names.GetSize(), Utf8ToWide(clip.animation->mName.C_Str()));
        ranges.insert(ranges.end(), {clip.range.start, clip.range.end});
    }
    if (m_rateKnown)
        scene.GetCustomData().SetDouble(SCENE_FRAME_RATE, m_rate);
    scene.GetCustomData().SetStringArray(SCENE_CLIP_NAMES, names);
    scene.GetCustomData().SetData(SCENE_CLIP_RANGES, ranges.data(), static_cast<unsigned int>(ranges.size() * sizeof(int)));
}
