// One number for the image and its notes, the same in every process.
#pragma once

#include <cstdint>
#include <string>

#include "image/image.h"
#include "tuning/settings.h"

namespace zandrel {

inline std::uint64_t ImageSum() {
    std::uint64_t sum = 1469598103934665603U;
    const auto add = [&sum](std::uint64_t value) { sum = (sum ^ value) * 1099511628211U; };
    const auto addText = [&add](const std::string& text) {
        add(text.size());
        for (const char byte : text) add(static_cast<std::uint8_t>(byte));
    };
    for (const ByteString& block : ReadData) addText(block);
    addText(txtNotes.Text);
    return sum;
}

}  // namespace zandrel
