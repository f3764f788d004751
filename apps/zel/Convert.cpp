#include "Convert.h"

#include <charconv>
#include <chrono>
#include <optional>
#include <set>

#include "OutputTarget.h"
#include "ProgressBar.h"
#include "StandardInput.h"

namespace {

/// A part of a list: every count-th file from the number-th on.
struct Shard {
    unsigned int number = 1, count = 1;
};

std::optional<Shard> ParseShard(const std::string& text)
{
    Shard shard;
    const char* const end = text.data() + text.size();
    const auto [slash, error] = std::from_chars(text.data(), end, shard.number);
    if (error != std::errc() || slash == end || *slash != '/')
        return std::nullopt;
    const auto [rest, countError] = std::from_chars(slash + 1, end, shard.count);
    if (countError != std::errc() || rest != end || shard.number < 1 || shard.number > shard.count)
        return std::nullopt;
    return shard;
}

}

ConvertVerb::ConvertVerb(CLI::App& app)
    : m_verb(app.add_subcommand("convert", "Converts a file (IN OUT), or many (IN... --out-dir DIR --format EXT)")), m_input(*m_verb),
      m_output(*m_verb)
{
    constexpr const char* BATCH = "Many files";
    m_verb->add_option("FILE", m_files, "IN OUT, or IN... with --out-dir")->required();
    CLI::Option* const folder = m_verb->add_option("--out-dir", m_folder, "Write each file to this folder, under its own name");
    folder->group(BATCH)->type_name("DIR")->needs(m_verb->get_option("--format"));
    m_verb->add_flag("--keep-tree", m_keepTree, "Keep the folders of the files: a/b/c.obj becomes DIR/a/b/c")->group(BATCH)->needs(folder);
    m_verb->add_option("-j,--jobs", m_jobs, "Files at a time, each in a process of its own; 1 by default, 1024 at most")
        ->group(BATCH)
        ->type_name("N")
        ->check(CLI::Range(1u, 1024u).description(""))
        ->needs(folder);
    m_verb->add_option("--job-seconds", m_jobSeconds, "Time limit for each file; 3600 by default, 0: no limit")
        ->group(BATCH)
        ->type_name("N")
        ->needs(folder);
    m_verb->add_option("--shard", m_shard, "Only the I-th of N parts of the list, for array jobs; I from 1")
        ->group(BATCH)
        ->type_name("I/N")
        ->check([](const std::string& text) { return ParseShard(text) ? std::string() : "not I/N with I from 1 to N: " + text; })
        ->needs(folder);
}

ExitCode ConvertVerb::Run(const Console& console) const
{
    if (!m_folder.empty())
        return ConvertMany(console);
    if (m_files.size() == 2)
        return ConvertFile(console, m_files[0], m_files[1]);
    console.Fail("convert takes IN OUT, or --out-dir and --format for many files (see zel convert --help)");
    return EXIT_USAGE;
}

ExitCode ConvertVerb::ConvertFile(const Console& console, const std::string& source, const std::string& target) const
{
    const InputFiles inputs({source});
    if (const ExitCode code = m_output.Check(console, target, inputs); code != EXIT_DONE)
        return code;
    const ProgressBar bar(console);
    C3DConversionReport report;
    std::string failure;
    const std::optional<SceneFile> file = m_input.Read(console, source, report, &failure);
    if (file)
        return m_output.Write(console, *file->scene, target, inputs, report);
    m_output.PrintFailure(inputs, target, report, failure);
    return EXIT_UNREADABLE;
}

ExitCode ConvertVerb::ConvertMany(const Console& console) const
{
    std::vector<BatchItem> items;
    if (!ListItems(console, items))
        return EXIT_USAGE;
    std::set<std::string> folders{m_folder};
    for (const BatchItem& item : items)
        folders.insert(WideToUtf8(fileGetPath(Utf8ToWide(item.target))));
    for (const std::string& folder : folders)
        if (const std::string reason = MakeFolder(folder); !reason.empty()) {
            console.Fail(folder + ": " + reason);
            return EXIT_FAILED;
        }
    return Batch(console, std::move(items), m_jobs, std::chrono::seconds(m_jobSeconds))
        .Run([&](const BatchItem& item) { return ConvertFile(console, item.source, item.target); }, m_output.IsJsonReport());
}

// The whole list is looked at before a part of it is taken, so that all parts agree.
bool ConvertVerb::ListItems(const Console& console, std::vector<BatchItem>& items) const
{
    unsigned int fileClass;
    if (!m_output.GetFormat(console, fileClass))
        return false;
    CFileExt format;
    fileGetExtensionInfo(fileClass, &format);
    const std::string extension = WideToUtf8(format.GetMainExtension());
    const InputFiles inputs(m_files);
    const Shard shard = ParseShard(m_shard).value_or(Shard());
    std::set<std::string> sources, targets;
    for (std::size_t i = 0; i < m_files.size(); i++) {
        if (!sources.insert(m_files[i]).second) {
            console.Fail(m_files[i] + ": is given twice");
            return false;
        }
        const std::string title = GetTitle(m_files[i]);
        std::string target = title + extension;
        for (int number = 2; !targets.insert(target).second; number++)
            target = title + "-" + std::to_string(number) + extension;
        if (m_output.IsInput(console, target, inputs))
            return false;
        if (i % shard.count != shard.number - 1)
            continue;
        if (target != title + extension)
            console.Say(m_files[i] + ": is written to " + target + ", for another file has its name");
        items.push_back({m_files[i], target});
    }
    return true;
}

// What the file becomes, without extension.
std::string ConvertVerb::GetTitle(const std::string& source) const
{
    using Text = CXTString<wchar_t>;
    const Text name = Utf8ToWide(source == STANDARD_INPUT ? "stdin" : source);
    Text folders = m_keepTree ? fileNormalize(fileGetPath(name)) : Text();
    folders = folders == L"." ? Text() : folders.Mid(fileGetRoot(folders).GetLength());
    while (folders == L".." || folders.Left(3) == L"../")    // never out of the folder
        folders = folders.Mid(3);
    return WideToUtf8(fileAddSlash(Utf8ToWide(m_folder)) + fileAddSlash(folders) + fileStripExtension(fileStripPath(name)));
}
