#include "Turntable.h"

#include <future>
#include <utility>

namespace {

ExitCode WriteAnimation(const Console& console, DrawnFile& file, const CTurntable& turntable, const PictureFile& target)
{
    CFrameBitmap frames;
    for (int i = 0; i < turntable.count; i++) {
        Picture picture = file.Draw(i);
        if (!picture)
            return EXIT_FAILED;
        frames.AddFrame(new CLayerBitmap(picture.release()), turntable.GetDuration());
    }
    return target.Write(console, frames);
}

// Each picture is compressed while the next one is drawn.
ExitCode WriteSeries(const Console& console, DrawnFile& file, const CTurntable& turntable, const PictureFile& target)
{
    std::future<ExitCode> writing;
    const auto finish = [&] { return writing.valid() ? writing.get() : EXIT_DONE; };
    for (int i = 0; i < turntable.count; i++) {
        Picture picture = file.Draw(i);
        if (const ExitCode code = finish(); code != EXIT_DONE || !picture)
            return code != EXIT_DONE ? code : EXIT_FAILED;
        writing = std::async(std::launch::async,
                             [&console, &target, i, shown = std::move(picture)] { return target.GetNumbered(i).Write(console, *shown); });
    }
    return finish();
}

}

ExitCode WriteTurntable(const Console& console, DrawnFile& file, const CTurntable& turntable, const PictureFile& target)
{
    return target.HoldsMany() ? WriteAnimation(console, file, turntable, target) : WriteSeries(console, file, turntable, target);
}
