// The serial ports and the COM port menu. MSComm1 is the working link, MSComm the sixteen listeners of the
// auto detection, MSComm2 only tests whether a port exists. Port numbers are 1 to 16.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "util/controls.h"
#include "util/text.h"

namespace zandrel {

/// One serial port at 57600 baud, no parity, 8 data bits, 1 stop bit, no handshaking. No routine of it runs
/// the event loop.
class SerialPort {
  public:
    SerialPort();
    ~SerialPort();

    int CommPort = 1;

    /// Opens port `CommPort`. False: it is not there, in use or forbidden; `ErrorText` says which.
    bool Open();
    void Close();
    bool PortOpen() const;

    /// Bytes that have arrived and were not taken.
    int InBufferCount();

    /// Takes `count` bytes, or all that have arrived for 0; fewer where fewer are there.
    ByteString Input(int count);

    /// Sends `bytes` now. False: the port failed.
    bool Output(const ByteString& bytes);

    /// Waits without running the event loop until something arrives, at most `milliseconds`. False: the
    /// port has failed (pulled out); a time-out is not a failure.
    bool WaitForInput(int milliseconds);

    std::string ErrorText() const;

    /// The last `Open` failed because the port is in use or the user has no right to it.
    bool Forbidden() const;

  private:
    struct Platform;
    std::unique_ptr<Platform> platform_;
};

extern SerialPort MSComm1;
extern std::array<SerialPort, 16> MSComm;
extern SerialPort MSComm2;

// The port menu: item n stands for COM(n + 1).
extern std::array<MenuItem, 16> mnuCom;
extern MenuItem mnuComNone;
extern MenuItem mnuComAuto;
extern MenuItem mnuComShowAll;

/// Device of port `number` on this system, or its override from ZANDREL_PORTS ("1=/some/tty,2=/other").
std::string ComDevice(int number);

/// What the menu shows of a port: number, device and the adapter's product text.
std::string ComCaption(int number);

/// True if the port can be opened and closed.
bool ComPortExists(int number);

/// Chooses the port of menu item `index`, or gives up the one that is ticked.
void mnuCom_Click(int index);

/// The menu is about to be shown: offers the ports that exist. Yields at each port.
void ComPortMenu_Open();

/// Flips whether all sixteen ports are offered.
void mnuComShowAll_Click();

}  // namespace zandrel
