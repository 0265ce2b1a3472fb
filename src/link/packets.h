// The packet layer: one request, one reply, the PC speaks first. A frame is code, length, data, checksum;
// the length counts itself, the data and the checksum, and all bytes of a frame add up to 255 modulo 256.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "util/text.h"

namespace zandrel {

enum class [[nodiscard]] LinkResult{Success = 0, PortClosed = 1, NoReply = 2, BadReply = 3, WrongCode = 4};

// Link settings of the run; read from the settings store at start, never written to it.
extern std::int32_t ComTimeOutTicks;  // milliseconds for a reply to the first send
extern std::int32_t ComRetries;       // repeats after the first send
inline constexpr std::int32_t kDefaultComTimeOutTicks = 250;
inline constexpr std::int32_t kDefaultComRetries = 2;

// The boxes that show and edit them.
extern std::string txtComTimeOut;
extern std::string txtComRetries;

/// Takes an edited box as a 16-bit number; a text that is none leaves the old value.
void txtComTimeOut_Change();
void txtComRetries_Change();

/// Runs once after each send, while the reply is on its way. Must neither send nor yield. Set by live/.
inline std::function<void()> AfterSend = [] {};

/// True if the working port is open. Otherwise with `ask` offers the auto detection first.
bool ComCheck(bool ask);

/// Closes the working port, if it is open, and opens it again.
void ComReset();

/// Drops what stands in the input buffer. 0, or 1 if the port is not open.
int ComFlush();

/// Frames `command` (code and data) and sends it. 0, or 1 if it could not be sent.
int WritePacket(const ByteString& command);

/// Sends `command` and waits for its reply, up to `retries` + 1 times. `timeOut` (ms; 0 = ComTimeOutTicks)
/// and `retries` (-1 = ComRetries) take the values used. On success `command` becomes the whole reply
/// frame. `show`: the user is told of a failure. Never runs the event loop while it waits.
LinkResult ReadPacket(ByteString& command, bool show, int& timeOut, int& retries);

/// The same with the default time-out and retries.
LinkResult ReadPacket(ByteString& command, bool show);

/// Reads block `command`. `data` takes the reply's data if there are `expectedLength` bytes of it, and
/// otherwise stays. With 0 any length will do, and the checksum byte is carried along as the last.
LinkResult ReadPacketData(const ByteString& command, int expectedLength, ByteString& data, bool show);

/// Reads block `block` (0 to 255), which has `length` bytes, into the image. False: it failed, the image is
/// as it was.
bool ReadBlock(int block, int length, bool show);

/// Tells the user that nothing answers and opens the port anew. Nothing if `show` is false.
void ShowNotResponding(bool show);

/// The frame of `command`: code, length, data, checksum.
ByteString FrameOf(const ByteString& command);

}  // namespace zandrel
