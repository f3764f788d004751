#pragma once

/// What a picking in GL_SELECT asks and finds. Each hit: number of names, nearest and farthest depth, names.
struct glPickInfo {
    int hits = 0;

    int GetBufferSize() const { return 0; }
    unsigned int* GetBuffer() { return nullptr; }
    /// Multiplies the projection by the pick matrix.
    void ApplyMatrix(const int*) const {}
};
