#include "Merge.h"

#include <optional>

#include "ProgressBar.h"

namespace {

// Lengths in the unit of the scene that takes them in, where both tell theirs.
void MatchUnit(C3DScene& scene, const C3DScene& to)
{
    if (!scene.IsUnitDefined() || !to.IsUnitDefined())
        return;
    const auto factor = static_cast<float>(scene.GetScaleFactor() / to.GetScaleFactor());
    if (factor != 1)
        scene.Scale(C3DTVector<float>(factor, factor, factor));
}

// Image files that are found beside a scene are found from the other one too.
void MatchTextures(C3DScene& scene, C3DScene& to)
{
    const CXTString<wchar_t> folder = fileMakeAbsolutePath(fileGetCurrentDirectory(), scene.GetFilepath());
    const CXTString<wchar_t> base = fileMakeAbsolutePath(fileGetCurrentDirectory(), to.GetFilepath());
    if (fileCompareDirectory(folder, base))
        return;
    to.AddTexturePath(folder);
    for (unsigned int pos = scene.GetFirstMaterial(); pos != HASH_END;) {
        const C3DMaterial* const material = scene.GetNextMaterial(pos);
        for (const MapType type : {MAP_DIFFUSE, MAP_AMBIENT, MAP_SPECULAR, MAP_TRANSPARENCY, MAP_BUMP}) {
            CMaterialMap* const map = material->GetMaterialMap(type);
            if (!map)
                continue;
            if (const CXTString<wchar_t> path = map->GetBitmapPath(&scene, false, true); !path.IsEmpty())
                map->SetFileName(path, base);
            if (const CXTString<wchar_t> path = map->GetBitmapPath(&scene, true, true); !path.IsEmpty())
                map->SetAlphaFileName(path, base);
        }
    }
}

}

MergeVerb::MergeVerb(CLI::App& app)
    : m_verb(app.add_subcommand("merge", "Makes one file of the objects of many, in the unit of the first")), m_input(*m_verb),
      m_output(*m_verb)
{
    m_verb->add_option("OUT", m_target, "File to write")->required();
    m_verb->add_option("IN", m_files, "Files to read")->required();
}

ExitCode MergeVerb::Run(const Console& console) const
{
    const InputFiles inputs(m_files);
    if (const ExitCode code = m_output.Check(console, m_target, inputs); code != EXIT_DONE)
        return code;
    const ProgressBar bar(console);
    C3DConversionReport report;
    std::optional<SceneFile> all;
    for (const std::string& name : m_files) {
        std::string failure;
        std::optional<SceneFile> file = m_input.Read(console, name, report, &failure);
        if (!file) {
            m_output.PrintFailure(inputs, m_target, report, failure);
            return EXIT_UNREADABLE;    // half of a merge is none
        }
        if (!all) {
            all = std::move(file);
            continue;
        }
        MatchUnit(*file->scene, *all->scene);
        MatchTextures(*file->scene, *all->scene);
        all->scene->Merge(file->scene.release(), nullptr);
    }
    return m_output.Write(console, *all->scene, m_target, inputs, report);
}
