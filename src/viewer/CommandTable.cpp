#include "viewer/CommandTable.h"

#include <algorithm>

#include "tools/FourCC.h"
#include "windows/Keys.h"

namespace {

constexpr unsigned int SIMP = FourCC("SIMP"), INTE = FourCC("INTE");

// Modifiers of a key. KEYS_SECOND tells the second command of one numeric key.
constexpr unsigned int PLAIN = 0x200, SHIFT = PLAIN | 1, CTRL = PLAIN | 2, ALT = PLAIN | 4, KEYS_SECOND = 0x10;

constexpr unsigned int USUAL = COMMAND_REPEATABLE, VIEWING = USUAL | COMMAND_TAKES_MOUSE, POPUP = USUAL | COMMAND_HAS_POPUP,
                       BAR_MENU = USUAL | COMMAND_HAS_TOOLBAR_MENU;

/// A place in a menu or bar: blocks are parted by separators.
constexpr unsigned int AT(unsigned int block, unsigned int place) { return block << 16 | place; }
constexpr unsigned int NOWHERE = 0;

// In the order in which the frame builds and registers them.
constexpr CommandRow ROWS[] = {
    // identifier, group, type, key, modifiers, name, description, icon, place in menu, place in bar, states
    {FourCC("FULL"), FourCC("VIEW"), SIMP, VK_TAB, PLAIN, 9500, 9501, 9700, AT(1, 0), AT(10, 0), USUAL},
    {FourCC("DSSC"), FourCC("VIEW"), SIMP, 'L', PLAIN, 9502, 9503, 9701, AT(1, 1), AT(9, 0), 0},
    {FourCC("SHOB"), FourCC("VIEW"), SIMP, 'O', PLAIN, 9504, 9505, 9702, AT(1, 2), AT(9, 2), USUAL},
    {FourCC("SHMA"), FourCC("VIEW"), SIMP, 'M', PLAIN, 9506, 9507, 9703, AT(1, 3), AT(9, 1), USUAL},
    {FourCC("MOVE"), FourCC("MOVE"), INTE, 'P', PLAIN, 9508, 9509, 9704, AT(1, 0), AT(2, 2), VIEWING},
    {FourCC("MOVL"), FourCC("MOVE"), SIMP, VK_LEFT, SHIFT, 9510, 9511, 0, AT(2, 0), NOWHERE, USUAL},
    {FourCC("MOVR"), FourCC("MOVE"), SIMP, VK_RIGHT, SHIFT, 9512, 9511, 0, AT(2, 1), NOWHERE, USUAL},
    {FourCC("MOVU"), FourCC("MOVE"), SIMP, VK_UP, SHIFT, 9513, 9511, 0, AT(2, 2), NOWHERE, USUAL},
    {FourCC("MOVB"), FourCC("MOVE"), SIMP, VK_DOWN, SHIFT, 9514, 9511, 0, AT(2, 3), NOWHERE, USUAL},
    {FourCC("ZOOM"), FourCC("ZOOM"), INTE, 'Z', PLAIN, 9515, 9516, 9705, AT(1, 0), AT(2, 3), VIEWING},
    {FourCC("ZOOI"), FourCC("ZOOM"), SIMP, VK_ADD, PLAIN, 9517, 9518, 9706, AT(2, 0), NOWHERE, USUAL},
    {FourCC("ZOOO"), FourCC("ZOOM"), SIMP, VK_SUBTRACT, PLAIN, 9519, 9520, 9707, AT(2, 1), NOWHERE, USUAL},
    {FourCC("ROTA"), FourCC("ROTA"), INTE, 'R', PLAIN, 9521, 9522, 9708, AT(1, 0), AT(2, 1), VIEWING},
    {FourCC("SELC"), FourCC("SELE"), INTE, 'S', PLAIN, 9523, 9524, 9709, AT(3, 0), AT(2, 0), VIEWING},
    {FourCC("SLAL"), FourCC("EDIT"), SIMP, 'A', CTRL, 9525, 9526, 0, AT(1, 0), NOWHERE, USUAL},
    {FourCC("SLNN"), FourCC("EDIT"), SIMP, 'D', CTRL, 9527, 9528, 0, AT(1, 1), NOWHERE, USUAL},
    {FourCC("SLIN"), FourCC("EDIT"), SIMP, 'A', CTRL | SHIFT, 9529, 9530, 0, AT(1, 2), NOWHERE, USUAL},
    {FourCC("SLRE"), FourCC("EDIT"), SIMP, 'D', CTRL | SHIFT, 9531, 9532, 0, AT(1, 3), NOWHERE, USUAL},
    {FourCC("SWAL"), FourCC("VIEW"), SIMP, 'Y', CTRL, 9533, 9534, 0, AT(3, 0), NOWHERE, USUAL},
    {FourCC("SWHD"), FourCC("VIEW"), SIMP, 'H', CTRL, 9535, 9536, 0, AT(3, 1), NOWHERE, USUAL},
    {FourCC("SWSL"), FourCC("VIEW"), SIMP, 'Y', CTRL | SHIFT, 9537, 9538, 0, AT(3, 2), NOWHERE, USUAL},
    {FourCC("SWRE"), FourCC("VIEW"), SIMP, 'H', CTRL | SHIFT, 9539, 9540, 0, AT(3, 3), NOWHERE, USUAL},
    {FourCC("SLFC"), FourCC("SELE"), INTE, 'F', PLAIN, 9541, 9524, 9710, AT(3, 1), AT(3, 0), VIEWING},
    {FourCC("ROTL"), FourCC("ROTA"), SIMP, VK_LEFT, PLAIN, 9542, 9543, 0, AT(2, 0), NOWHERE, USUAL},
    {FourCC("ROTR"), FourCC("ROTA"), SIMP, VK_RIGHT, PLAIN, 9544, 9543, 0, AT(2, 1), NOWHERE, USUAL},
    {FourCC("ROTU"), FourCC("ROTA"), SIMP, VK_UP, PLAIN, 9545, 9543, 0, AT(2, 2), NOWHERE, USUAL},
    {FourCC("ROTB"), FourCC("ROTA"), SIMP, VK_DOWN, PLAIN, 9546, 9543, 0, AT(2, 3), NOWHERE, USUAL},
    {FourCC("VTOP"), FourCC("POVW"), SIMP, VK_NUMPAD0 + 8, PLAIN, 9547, 9548, 9711, AT(1, 4), AT(5, 4), USUAL},
    {FourCC("VBOT"), FourCC("POVW"), SIMP, VK_NUMPAD0 + 2, PLAIN, 9549, 9548, 9712, AT(1, 5), AT(5, 5), USUAL},
    {FourCC("VLEF"), FourCC("POVW"), SIMP, VK_NUMPAD0 + 4, PLAIN, 9550, 9548, 9713, AT(1, 2), AT(5, 2), USUAL},
    {FourCC("VRIG"), FourCC("POVW"), SIMP, VK_NUMPAD0 + 6, PLAIN, 9551, 9548, 9714, AT(1, 3), AT(5, 3), USUAL},
    {FourCC("VFRO"), FourCC("POVW"), SIMP, VK_NUMPAD0 + 5, PLAIN, 9552, 9548, 9715, AT(1, 0), AT(5, 0), USUAL},
    {FourCC("VBAC"), FourCC("POVW"), SIMP, VK_NUMPAD0 + 5, ALT, 9553, 9548, 9716, AT(1, 1), AT(5, 1), USUAL},
    {FourCC("VLTF"), FourCC("POV2"), SIMP, VK_NUMPAD0 + 4, CTRL | ALT, 9554, 9548, 0, AT(1, 0), NOWHERE, USUAL},
    {FourCC("VRTF"), FourCC("POV2"), SIMP, VK_NUMPAD0 + 6, CTRL | ALT, 9555, 9548, 0, AT(1, 1), NOWHERE, USUAL},
    {FourCC("VLBF"), FourCC("POV2"), SIMP, 0, PLAIN, 9556, 9548, 0, AT(1, 4), NOWHERE, USUAL},
    {FourCC("VRBF"), FourCC("POV2"), SIMP, 0, PLAIN, 9557, 9548, 0, AT(1, 5), NOWHERE, USUAL},
    {FourCC("VLTK"), FourCC("POV2"), SIMP, VK_NUMPAD0 + 4, ALT, 9558, 9548, 0, AT(1, 2), NOWHERE, USUAL},
    {FourCC("VRTK"), FourCC("POV2"), SIMP, VK_NUMPAD0 + 6, ALT, 9559, 9548, 0, AT(1, 3), NOWHERE, USUAL},
    {FourCC("VLBK"), FourCC("POV2"), SIMP, 0, PLAIN, 9560, 9548, 0, AT(1, 6), NOWHERE, USUAL},
    {FourCC("VRBK"), FourCC("POV2"), SIMP, 0, PLAIN, 9561, 9548, 0, AT(1, 7), NOWHERE, USUAL},
    {FourCC("VAGL"), FourCC("POV2"), SIMP, VK_NUMPAD0 + 5, CTRL | ALT, 9562, 9563, 0, AT(2, 0), NOWHERE, USUAL},
    {FourCC("OPNV"), FourCC("VIEW"), SIMP, 0, PLAIN, 9564, 9565, 0, AT(2, 2), NOWHERE, POPUP},
    {FourCC("ZOSL"), FourCC("VIEW"), SIMP, VK_NUMPAD0, CTRL, 9566, 9567, 9717, AT(2, 1), AT(4, 1), USUAL},
    {FourCC("RSZO"), FourCC("VIEW"), SIMP, VK_NUMPAD0, PLAIN, 9568, 9569, 9718, AT(2, 0), AT(4, 0), USUAL},
    {FourCC("VWCM"), FourCC("VIEW"), SIMP, 0, PLAIN, 9570, 9548, 9719, AT(2, 3), AT(4, 2), POPUP},
    {FourCC("NXCM"), FourCC("VCAM"), SIMP, VK_MULTIPLY, PLAIN, 9571, 9572, 9720, NOWHERE, NOWHERE, USUAL},
    {FourCC("PVCM"), FourCC("VCAM"), SIMP, VK_MULTIPLY, CTRL, 9573, 9574, 9721, NOWHERE, NOWHERE, USUAL},
    {FourCC("CTCM"), FourCC("VCAM"), SIMP, VK_DIVIDE, CTRL, 9575, 9576, 9722, NOWHERE, NOWHERE, COMMAND_CHANGES_DOCUMENT},
    {FourCC("CPJM"), FourCC("VCAM"), SIMP, VK_DIVIDE, PLAIN, 9577, 9578, 9723, NOWHERE, NOWHERE, USUAL},
    {FourCC("WIRE"), FourCC("REND"), SIMP, VK_NUMPAD0 + 1, CTRL, 9579, 9580, 9724, AT(1, 0), AT(6, 0), USUAL},
    {FourCC("FLAT"), FourCC("REND"), SIMP, VK_NUMPAD0 + 2, CTRL, 9581, 9582, 9725, AT(1, 1), AT(6, 1), USUAL},
    {FourCC("SMOO"), FourCC("REND"), SIMP, VK_NUMPAD0 + 3, CTRL, 9583, 9584, 9726, AT(1, 2), AT(6, 2), BAR_MENU},
    {FourCC("FLWI"), FourCC("REND"), SIMP, VK_NUMPAD0 + 4, CTRL, 9585, 9586, 9727, AT(1, 3), AT(6, 3), USUAL},
    {FourCC("SMWI"), FourCC("REND"), SIMP, VK_NUMPAD0 + 5, CTRL, 9587, 9588, 9728, AT(1, 4), AT(6, 4), BAR_MENU},
    {FourCC("BRGD"), FourCC("LIGH"), SIMP, 'L', CTRL | SHIFT, 9589, 9590, 9729, AT(1, 0), AT(7, 1), USUAL},
    {FourCC("BRGL"), FourCC("LIGH"), SIMP, 'L', CTRL, 9591, 9592, 9730, AT(1, 1), AT(7, 0), USUAL},
    {FourCC("BRGM"), FourCC("LIGH"), SIMP, 'L', SHIFT, 9593, 9594, 9731, AT(1, 2), AT(7, 2), USUAL},
    {FourCC("ENTX"), FourCC("REND"), SIMP, 'T', SHIFT, 9307, 9595, 0, AT(2, 0), NOWHERE, USUAL},
    {FourCC("ENVC"), FourCC("REND"), SIMP, 0, PLAIN, 9317, 9596, 0, AT(2, 1), NOWHERE, USUAL},
    {FourCC("ENSN"), FourCC("REND"), SIMP, 'N', SHIFT, 9305, 9597, 0, AT(2, 2), NOWHERE, USUAL},
    {FourCC("ENTV"), FourCC("REND"), SIMP, 0, PLAIN, 9598, 9599, 9732, AT(2, 3), AT(6, 5), BAR_MENU},
    {FourCC("PREF"), FourCC("EDIT"), SIMP, 'P', ALT, 9600, 9601, 9733, AT(9, 0), NOWHERE, USUAL},
    {FourCC("PLAY"), FourCC("ANIM"), SIMP, VK_SPACE, CTRL, 9602, 9603, 9734, AT(1, 0), AT(8, 2), USUAL},
    {FourCC("PRFR"), FourCC("ANIM"), SIMP, VK_SUBTRACT, CTRL, 9604, 9605, 9735, AT(2, 1), AT(8, 1), USUAL},
    {FourCC("NXFR"), FourCC("ANIM"), SIMP, VK_ADD, CTRL, 9606, 9607, 9736, AT(2, 0), AT(8, 3), USUAL},
    {FourCC("PRKF"), FourCC("ANIM"), SIMP, VK_SUBTRACT, KEYS_SECOND | SHIFT, 9608, 9609, 9737, AT(3, 1), AT(8, 0), USUAL},
    {FourCC("NXKF"), FourCC("ANIM"), SIMP, VK_ADD, KEYS_SECOND | SHIFT, 9610, 9611, 9738, AT(3, 0), AT(8, 4), USUAL},
    {FourCC("CLOS"), FourCC("FILE"), SIMP, 0, PLAIN, 9612, 9613, 0, AT(9, 0), NOWHERE, 0},
    {FourCC("SAVS"), FourCC("FILE"), SIMP, 'S', CTRL | SHIFT, 9614, 9615, 9739, AT(2, 0), AT(1, 1), 0},
    {FourCC("SAVB"), FourCC("FILE"), FourCC("DIAL"), 'I', CTRL | SHIFT, 9850, 9851, 0, AT(2, 1), NOWHERE, 0},
    {FourCC("OPEN"), FourCC("FILE"), SIMP, 'O', CTRL, 9616, 9617, 9740, AT(1, 0), AT(1, 0), 0},
    {FourCC("MERG"), FourCC("FILE"), SIMP, 'M', CTRL, 9979, 9214, 0, AT(8, 0), NOWHERE, 0},
    {FourCC("MERF"), FourCC("FILE"), SIMP, 'M', CTRL | SHIFT, 9980, 9981, 0, AT(8, 1), NOWHERE, 0},
    {FourCC("3HLP"), FourCC("HELP"), SIMP, VK_F1, PLAIN, 9618, 9619, 9741, AT(1, 0), NOWHERE, USUAL},
    {FourCC("3HPO"), FourCC("HELP"), SIMP, VK_F1, SHIFT, 9620, 9621, 0, AT(1, 1), NOWHERE, 0},
    {FourCC("DELN"), FourCC("EDIT"), SIMP, VK_DELETE, PLAIN, 9622, 9623, 9742, AT(2, 0), NOWHERE, USUAL | COMMAND_CHANGES_DOCUMENT},
    {FourCC("RCNT"), FourCC("FILE"), SIMP, 0, PLAIN, 9686, 9687, 0, AT(1, 1), NOWHERE, POPUP},
    {FourCC("NXFI"), FourCC("FILE"), SIMP, VK_NEXT, CTRL, 9688, 9689, 0, AT(3, 0), NOWHERE, USUAL},
    {FourCC("PVFI"), FourCC("FILE"), SIMP, VK_PRIOR, CTRL, 9690, 9691, 0, AT(3, 1), NOWHERE, USUAL},
};

}

const CommandRow* FindCommandRow(unsigned int id)
{
    const auto found = std::find_if(std::begin(ROWS), std::end(ROWS), [&](const CommandRow& row) { return row.id == id; });
    return found != std::end(ROWS) ? found : nullptr;
}
