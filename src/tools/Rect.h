#pragma once

/// Positions and sizes in pixels; y goes down.
struct CPoint {
    int x = 0, y = 0;
    friend constexpr bool operator==(const CPoint&, const CPoint&) = default;
};

struct CSize {
    int cx = 0, cy = 0;
    friend constexpr bool operator==(const CSize&, const CSize&) = default;
};

/// `right` and `bottom` are outside.
struct CRect {
    int left = 0, top = 0, right = 0, bottom = 0;

    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    constexpr bool PtInRect(CPoint point) const { return point.x >= left && point.x < right && point.y >= top && point.y < bottom; }
    friend constexpr bool operator==(const CRect&, const CRect&) = default;
};
