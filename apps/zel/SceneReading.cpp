#include "SceneReading.h"

#include "ProgressBar.h"

SceneReading::SceneReading(const Console& console, const std::string& name)
    : m_file(std::async(std::launch::async, [&console, name] {
          const ProgressBar bar(console);    // progress is told to the thread that works
          return ReadSceneFile(console, name);
      }))
{
}
