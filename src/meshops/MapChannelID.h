#pragma once

/// Faces of a material take their texture coordinates from a channel. Found by the material.
class CMapChannelID {
public:
    CMapChannelID(unsigned int channel, unsigned int material) : m_channel(channel), m_material(material) {}

    unsigned int GetChannelID() const { return m_channel; }
    unsigned int GetMaterialID() const { return m_material; }
    bool operator==(const CMapChannelID& other) const { return m_material == other.m_material; }
    unsigned int GetHash() const { return m_material << 4; }

private:
    unsigned int m_channel, m_material;
};
