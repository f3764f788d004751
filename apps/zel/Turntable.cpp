#include "Turntable.h"

#include <algorithm>
#include <cmath>
#include <future>
#include <utility>

namespace {

// A whole turn takes four seconds, in steps that all formats can tell and programs play.
int GetDuration(const TurntableSettings& turntable)
{
    constexpr double TURN = 4000, TELLABLE = 10;
    const double one = TURN * turntable.amplitude / 360 / turntable.count;
    return static_cast<int>(std::clamp(std::round(one / TELLABLE) * TELLABLE, 20.0, 1000.0));
}

ExitCode WriteAnimation(const Console& console, DrawnFile& file, const TurntableSettings& turntable, const PictureFile& target)
{
    CFrameBitmap frames;
    for (int i = 0; i < turntable.count; i++) {
        Picture picture = file.Draw(i);
        if (!picture)
            return EXIT_FAILED;
        frames.AddFrame(new CLayerBitmap(picture.release()), GetDuration(turntable));
    }
    return target.Write(console, frames);
}

// Each picture is compressed while the next one is drawn.
ExitCode WriteSeries(const Console& console, DrawnFile& file, const TurntableSettings& turntable, const PictureFile& target)
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

ExitCode WriteTurntable(const Console& console, DrawnFile& file, const TurntableSettings& turntable, const PictureFile& target)
{
    return target.HoldsMany() ? WriteAnimation(console, file, turntable, target) : WriteSeries(console, file, turntable, target);
}
