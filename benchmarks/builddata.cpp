#include "builddata.h"

#include "image/image.h"
#include "simulator/simulator.h"
#include "tuning/binding.h"
#include "tuning/display.h"

namespace zandrel {

BuildData ContentsOf(const std::string& key) {
    powerfc::Options options;
    options.Version = key;
    const powerfc::Simulator device(options);
    BuildData data{FindBuild(key), {}};
    for (const int code : device.BlockCodes()) {
        data.Blocks[static_cast<std::size_t>(code)] = device.BlockString(code);
    }
    return data;
}

void Display(const BuildData& data) {
    DisplayInit1(SettingsRecordOf(*data.Record));
    DisplayInit2(LogRecordOf(*data.Record));
    DisplayAllData();
}

}  // namespace zandrel
