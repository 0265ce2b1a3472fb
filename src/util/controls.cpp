#include "util/controls.h"

namespace zandrel {

void ComboKeyFilter(ComboBox& combo, int& key) {
    enum {
        Return = 13,
        Escape = 27,
        Space = 32,
        End = 35,
        Home = 36,
        Left = 37,
        Up = 38,
        Right = 39,
        Down = 40
    };
    switch (key) {
        case Return:
        case Escape:
        case Up:
        case Down:
            break;
        case Space:
        case Right:
            key = Down;
            break;
        case Left:
            key = Up;
            break;
        case Home:
            combo.ListIndex = 0;
            key = 0;
            break;
        case End:
            combo.ListIndex = static_cast<int>(combo.Items.size()) - 1;
            key = 0;
            break;
        default:
            key = 0;
    }
}

}  // namespace zandrel
