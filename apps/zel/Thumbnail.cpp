#include "Thumbnail.h"

#include "DrawnFile.h"

ThumbnailVerb::ThumbnailVerb(CLI::App& app)
    : m_verb(app.add_subcommand("thumbnail", "Draws a small square picture of a file, without background, for file managers"))
{
    m_verb->add_option("FILE", m_file, "File to read")->required();
    m_verb->add_option("OUT", m_target, "Picture to write: a PNG, unless its extension tells another format")->required();
    m_verb->add_option("-s,--size", m_size, "Pixels a side; 256 by default")->check(CLI::Range(1, 4096).description(""))->type_name("N");
}

ExitCode ThumbnailVerb::Run(const Console& console) const
{
    PictureSettings settings;
    settings.size = CSize(m_size, m_size);
    settings.transparent = true;
    const PictureFile target(m_target, FourCC("PNG "));    // programs that ask for thumbnails may want them in a file without extension
    if (const ExitCode code = target.Check(console, true, m_file); code != EXIT_DONE)
        return code;
    DrawnFile file(console, m_file, settings);
    if (const ExitCode code = file.Open(); code != EXIT_DONE)
        return code;
    const Picture picture = file.Draw();
    return picture ? target.Write(console, *picture) : EXIT_FAILED;
}
