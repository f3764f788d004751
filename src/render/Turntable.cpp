#include "render/Turntable.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "render/GLViewSettings.h"

double CTurntable::GetAngle(int number) const { return number * amplitude * std::numbers::pi / 180 / std::max(1, count); }

int CTurntable::GetDuration() const
{
    constexpr double TURN = 4000, TELLABLE = 10;
    const double one = TURN * amplitude / 360 / std::max(1, count);
    return static_cast<int>(std::clamp(std::round(one / TELLABLE) * TELLABLE, 20.0, 1000.0));
}

void CTurntable::Turn(C4x4TMatrix<float>& matrix, Movement movement, double angle)
{
    const C3DTVector<float> across(1, 0, 0), up(0, 0, 1);
    switch (movement) {
    case RIGHT: TurnMatrix(matrix, up, -angle); break;
    case LEFT: TurnMatrix(matrix, up, angle); break;
    case UP: TurnMatrix(matrix, across, angle); break;
    case DOWN: TurnMatrix(matrix, across, -angle); break;
    }
}
