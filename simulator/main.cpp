// powerfc-sim: the simulated Power-FC by hand.
#include <signal.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "simulator/simulator.h"

namespace {

constexpr char kUsage[] =
    "Usage: powerfc-sim [options]\n"
    "A simulated Power-FC behind its interface box. The first line of output is the name of the\n"
    "terminal that the program is to open. Ends on an interrupt; SIGUSR1 sends the start-up text again.\n"
    "\n"
    "  --version KEY      build, engine name and version number joined (RB26DETT6.42); one that is not\n"
    "                     in the catalogue answers with that name and the blocks of RB26DETT6.42\n"
    "  --interface V      V1.X or V2.0 (V2.0)\n"
    "  --link PATH        symbolic link to the terminal, removed at the end\n"
    "  --pace             true 57600 baud timing both ways\n"
    "  --announce         send the start-up text\n"
    "  --ack              an acknowledging message before every reply\n"
    "  --refuse-maps      whole map blocks are not taken and not answered, single cells are\n"
    "  --image FILE.dat   a tuning data file whose blocks replace the contents\n"
    "  --journal FILE     write each frame with its microseconds\n"
    "  --help             this text\n";

int Refuse(const std::string& why) {
    std::fprintf(stderr, "powerfc-sim: %s\n%s", why.c_str(), kUsage);
    return 2;
}

}  // namespace

int main(int count, char** arguments) {
    powerfc::Options options;
    bool refuseMaps = false;
    for (int i = 1; i < count; ++i) {
        const std::string_view name = arguments[i];
        std::string* text = nullptr;
        if (name == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        } else if (name == "--pace") {
            options.Pace = true;
        } else if (name == "--announce") {
            options.Announce = true;
        } else if (name == "--ack") {
            options.Ack = true;
        } else if (name == "--refuse-maps") {
            refuseMaps = true;
        } else if (name == "--version") {
            text = &options.Version;
        } else if (name == "--interface") {
            text = &options.Interface;
        } else if (name == "--link") {
            text = &options.LinkPath;
        } else if (name == "--image") {
            text = &options.ImageFile;
        } else if (name == "--journal") {
            text = &options.JournalFile;
        } else {
            return Refuse("unknown option " + std::string(name));
        }
        if (!text) continue;
        if (i + 1 == count) return Refuse("nothing stands after " + std::string(name));
        *text = arguments[++i];
    }
    if (options.Interface != "V1.X" && options.Interface != "V2.0") {
        return Refuse("no such interface: " + options.Interface);
    }

    // Blocked before the simulator's thread begins, so that they come to sigwait alone.
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    powerfc::Simulator simulator(options);
    if (const std::string error = simulator.Error(); !error.empty()) {
        std::fprintf(stderr, "powerfc-sim: %s\n", error.c_str());
        return 1;
    }
    simulator.RefuseMapBlocks(refuseMaps);
    std::printf("%s\n", simulator.PortName().c_str());
    std::fflush(stdout);
    for (;;) {
        int signal = 0;
        if (sigwait(&signals, &signal) != 0 || signal != SIGUSR1) return 0;
        simulator.Announce();
    }
}
