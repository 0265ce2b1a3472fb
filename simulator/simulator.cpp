#include "simulator/simulator.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <fstream>
#include <mutex>
#include <thread>

#include "simulator/device.h"
#include "simulator/faults.h"
#include "simulator/frames.h"
#include "simulator/line.h"

namespace powerfc {
namespace {

// A frame that stops short is given up after this pause.
constexpr int kFrameGapMs = 50;
// Wake-ups come late by some microseconds. The last byte of a frame decides what an exchange takes, so
// the thread wakes this much early for it and watches the clock.
constexpr std::int64_t kWakeEarlyNs = 40'000;

enum class Command { Vanish, Return, Say };

struct Order {
    Command What;
    Bytes Data;
    std::uint64_t Ticket;
};

/// One thing to send: bytes that make one journal entry, in pieces with a pause between them.
struct Parcel {
    Bytes Data;
    std::vector<std::size_t> Cuts;
    int GapMs = 0;
};

}  // namespace

struct Simulator::Body {
    explicit Body(Options wanted) : options(std::move(wanted)), device(options) {}

    void Run();
    void Carry(const Order& order);
    void Hear();
    void Handle(const Request& request);
    void Answer(const Request& request, std::vector<Parcel>& parcels, int& vanishAfter);
    void Send(const std::vector<Parcel>& parcels, int vanishAfter);
    void SendParcel(const Parcel& parcel);
    void Emit(const std::uint8_t* bytes, std::size_t count, bool last, JournalEntry& entry);
    bool Pause(std::int64_t untilNs);
    void OpenTerminal();
    void Note(const JournalEntry& entry);
    double Seconds() const;
    void Wake() const;
    void Drain() const;
    std::uint64_t Post(Command what, Bytes data);
    void PostAndWait(Command what, Bytes data = {});

    const Options options;

    // Used by the thread alone, once it runs.
    Terminal terminal;
    FrameReader reader;
    std::int64_t lineFreeNs = 0;    // when the wire from the program is free again
    std::int64_t answerFromNs = 0;  // when the next answer may begin on the wire

    int wake = -1;
    std::atomic<bool> stop = false;
    std::atomic<bool> breakOff = false;  // ends a running answer

    mutable std::mutex mutex;  // guards all below
    mutable std::condition_variable changed;
    Device device;
    FaultQueue faults;
    std::vector<JournalEntry> journal;
    std::ofstream journalFile;
    std::deque<Order> orders;
    std::uint64_t posted = 0, done = 0;
    std::string error, portName;
    bool dead = false;
    double heldSeconds = -1;
    std::int64_t startNs = NowNs();

    std::thread thread;
};

void Simulator::Body::Wake() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wake, &one, sizeof one);
}

void Simulator::Body::Drain() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(wake, &count, sizeof count);
}

double Simulator::Body::Seconds() const {
    return heldSeconds >= 0 ? heldSeconds : static_cast<double>(NowNs() - startNs) / 1e9;
}

std::uint64_t Simulator::Body::Post(Command what, Bytes data) {
    const std::lock_guard lock(mutex);
    orders.push_back({what, std::move(data), ++posted});
    if (what == Command::Vanish) breakOff = true;
    Wake();
    return posted;
}

void Simulator::Body::PostAndWait(Command what, Bytes data) {
    const std::uint64_t ticket = Post(what, std::move(data));
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return done >= ticket; });
}

// The caller holds the mutex.
void Simulator::Body::Note(const JournalEntry& entry) {
    journal.push_back(entry);
    if (journalFile.is_open()) {
        journalFile << entry.FirstUs << ' ' << entry.LastUs
                    << (entry.Way == Direction::Received ? " > " : " < ") << ToHex(entry.Data)
                    << (entry.Malformed ? " malformed\n" : "\n");
        journalFile.flush();
    }
    changed.notify_all();
}

void Simulator::Body::OpenTerminal() {
    const std::string why = terminal.Open(options.LinkPath);
    const std::lock_guard lock(mutex);
    if (!why.empty()) {
        error = why;
        portName.clear();
        return;
    }
    portName = options.LinkPath.empty() ? terminal.Name() : options.LinkPath;
}

void Simulator::Body::Run() {
    if (options.Pace) ClaimPriority();
    while (!stop) {
        for (;;) {
            Order order{};
            {
                const std::lock_guard lock(mutex);
                if (orders.empty()) break;
                order = orders.front();
                orders.pop_front();
            }
            Carry(order);
            const std::lock_guard lock(mutex);
            done = order.Ticket;
            changed.notify_all();
        }
        pollfd watched[2] = {{wake, POLLIN, 0}, {terminal.Descriptor(), POLLIN, 0}};
        const nfds_t count = terminal.IsOpen() ? 2 : 1;
        const int ready = poll(watched, count, reader.Pending() ? kFrameGapMs : -1);
        if (watched[0].revents) Drain();
        if (count == 2 && watched[1].revents) Hear();
        if (ready == 0) {
            if (const auto rest = reader.GiveUp()) Handle(*rest);
        }
    }
    terminal.Close();
}

void Simulator::Body::Carry(const Order& order) {
    switch (order.What) {
        case Command::Vanish: {
            breakOff = false;
            terminal.Close();
            reader = FrameReader();
            const std::lock_guard lock(mutex);
            portName = options.LinkPath;
            break;
        }
        case Command::Return:
            if (!terminal.IsOpen()) {
                OpenTerminal();
                if (terminal.IsOpen() && options.Announce) {
                    const std::string text = device.Announcement();
                    answerFromNs = std::max(answerFromNs, NowNs());
                    SendParcel({Bytes(text.begin(), text.end()), {}, 0});
                }
            }
            break;
        case Command::Say:
            answerFromNs = std::max(answerFromNs, NowNs());
            if (terminal.IsOpen()) SendParcel({order.Data, {}, 0});
            break;
    }
}

void Simulator::Body::Hear() {
    std::uint8_t bytes[4096];
    const ssize_t count = read(terminal.Descriptor(), bytes, sizeof bytes);
    if (count <= 0) return;
    const std::int64_t now = NowNs();
    std::int64_t complete = now;
    if (options.Pace) {
        complete = std::max(now, lineFreeNs) + WireTimeNs(count);
        lineFreeNs = complete;
    }
    reader.Feed(bytes, static_cast<std::size_t>(count), now, complete);
    while (const auto request = reader.Next()) {
        if (!terminal.IsOpen()) break;
        Handle(*request);
    }
}

void Simulator::Body::Handle(const Request& request) {
    std::vector<Parcel> parcels;
    int vanishAfter = -1;
    int delayMs = 0;
    answerFromNs = std::max(request.LastNs, answerFromNs);
    {
        const std::lock_guard lock(mutex);
        Note({request.FirstNs / 1000, request.LastNs / 1000, Direction::Received, request.Data,
              request.Malformed});
        if (request.Malformed || dead) return;
        delayMs = faults.TakeDelay(request.Data[0]);
        Answer(request, parcels, vanishAfter);
    }
    if (delayMs > 0) {
        answerFromNs += std::int64_t{delayMs} * 1'000'000;
        if (!Pause(answerFromNs)) return;
    }
    Send(parcels, vanishAfter);
}

// The caller holds the mutex.
void Simulator::Body::Answer(const Request& request, std::vector<Parcel>& parcels, int& vanishAfter) {
    const int code = request.Data[0];
    const auto fault = faults.Take(code);
    if (fault && !CarriedOut(fault->Kind)) {
        if (fault->Kind == FaultKind::InterfaceError) {
            parcels.push_back({InterfaceMessage(fault->Number, code), {}, 0});
        } else if (fault->Kind == FaultKind::AcknowledgeThenSilence) {
            parcels.push_back({InterfaceMessage(0, fault->Number < 0 ? code : fault->Number), {}, 0});
        }
        return;
    }
    const auto answer = device.Respond(request.Data, Seconds());
    Parcel parcel{answer.value_or(Bytes()), {}, 0};
    if (fault) parcel.Data = Spoil(*fault, parcel.Data);
    if (fault && fault->Kind == FaultKind::Vanish) vanishAfter = fault->Number;
    if (fault && fault->Kind == FaultKind::SplitDelivery && parcel.Data.size() > 2) {
        parcel.GapMs = fault->Number;
        parcel.Cuts = {2, 2 + (parcel.Data.size() - 2) / 2};
        if (parcel.Cuts[0] == parcel.Cuts[1]) parcel.Cuts.pop_back();
    }
    if (parcel.Data.empty()) return;
    if (options.Ack && answer) parcels.push_back({InterfaceMessage(0, code), {}, 0});
    parcels.push_back(std::move(parcel));
}

void Simulator::Body::Send(const std::vector<Parcel>& parcels, int vanishAfter) {
    std::size_t allowed = vanishAfter < 0 ? SIZE_MAX : static_cast<std::size_t>(vanishAfter);
    for (const Parcel& parcel : parcels) {
        Parcel part = parcel;
        part.Data.resize(std::min(part.Data.size(), allowed));
        allowed -= part.Data.size();
        if (!part.Data.empty()) SendParcel(part);
    }
    if (vanishAfter < 0) return;
    if (vanishAfter > 0) terminal.WaitUntilRead();
    Carry({Command::Vanish, {}, 0});
}

void Simulator::Body::SendParcel(const Parcel& parcel) {
    JournalEntry entry{0, 0, Direction::Sent, parcel.Data, false};
    std::size_t from = 0;
    for (std::size_t piece = 0; piece <= parcel.Cuts.size(); ++piece) {
        if (piece > 0) {
            answerFromNs = std::max(answerFromNs, NowNs()) + std::int64_t{parcel.GapMs} * 1'000'000;
            if (!Pause(answerFromNs)) return;
        }
        const std::size_t to = piece < parcel.Cuts.size() ? parcel.Cuts[piece] : parcel.Data.size();
        if (!options.Pace) {
            Emit(&parcel.Data[from], to - from, to == parcel.Data.size(), entry);
        } else {
            for (std::size_t i = from; i < to; ++i) {
                const bool last = i + 1 == parcel.Data.size();
                const std::int64_t due = answerFromNs + WireTimeNs(static_cast<std::int64_t>(i - from + 1));
                SleepUntilNs(last ? due - kWakeEarlyNs : due);
                if (stop || breakOff) return;
                while (last && NowNs() < due) {
                }
                Emit(&parcel.Data[i], 1, last, entry);
            }
            answerFromNs += WireTimeNs(static_cast<std::int64_t>(to - from));
        }
        from = to;
    }
}

// The journal has the frame before the program can have its last byte.
void Simulator::Body::Emit(const std::uint8_t* bytes, std::size_t count, bool last, JournalEntry& entry) {
    std::unique_lock lock(mutex, std::defer_lock);
    if (last) lock.lock();
    entry.LastUs = NowNs() / 1000;
    if (entry.FirstUs == 0) entry.FirstUs = entry.LastUs;
    terminal.Write(bytes, count);
    if (last) Note(entry);
}

// False if the answer is to be broken off.
bool Simulator::Body::Pause(std::int64_t untilNs) {
    while (!stop && !breakOff) {
        const std::int64_t left = untilNs - NowNs();
        if (left <= 0) return true;
        const timespec timeout{static_cast<time_t>(left / 1'000'000'000),
                               static_cast<long>(left % 1'000'000'000)};
        pollfd watched = {wake, POLLIN, 0};
        if (ppoll(&watched, 1, &timeout, nullptr) > 0) Drain();
    }
    return false;
}

Simulator::Simulator(Options options) : body_(std::make_unique<Body>(std::move(options))) {
    Body& body = *body_;
    body.wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    body.error = body.device.Error();
    if (!body.options.JournalFile.empty()) {
        body.journalFile.open(body.options.JournalFile, std::ios::trunc);
        if (!body.journalFile) body.error = "Can't write " + body.options.JournalFile;
    }
    body.OpenTerminal();
    body.thread = std::thread([&body] { body.Run(); });
    if (body.options.Announce) Announce();
}

Simulator::~Simulator() {
    body_->stop = true;
    body_->Wake();
    body_->thread.join();
    close(body_->wake);
}

std::string Simulator::Error() const {
    const std::lock_guard lock(body_->mutex);
    return body_->error;
}

std::string Simulator::PortName() const {
    const std::lock_guard lock(body_->mutex);
    return body_->portName;
}

bool Simulator::HasBlock(int code) const {
    const std::lock_guard lock(body_->mutex);
    return body_->device.HasBlock(code);
}

Bytes Simulator::Block(int code) const {
    const std::lock_guard lock(body_->mutex);
    return body_->device.Block(code);
}

std::string Simulator::BlockString(int code) const {
    const Bytes block = Block(code);
    return std::string(block.begin(), block.end());
}

void Simulator::SetBlock(int code, Bytes data) {
    const std::lock_guard lock(body_->mutex);
    body_->device.SetBlock(code, std::move(data));
}

bool Simulator::Writable(int code) const {
    const std::lock_guard lock(body_->mutex);
    return body_->device.Writable(code);
}

std::vector<int> Simulator::BlockCodes() const {
    const std::lock_guard lock(body_->mutex);
    std::vector<int> codes;
    for (int code = 0; code < 256; ++code) {
        if (body_->device.HasBlock(code)) codes.push_back(code);
    }
    return codes;
}

void Simulator::HoldEngineAt(double seconds) {
    const std::lock_guard lock(body_->mutex);
    body_->heldSeconds = seconds;
}

std::vector<JournalEntry> Simulator::Journal() const {
    const std::lock_guard lock(body_->mutex);
    return body_->journal;
}

void Simulator::ClearJournal() {
    const std::lock_guard lock(body_->mutex);
    body_->journal.clear();
}

std::vector<std::string> Simulator::Received() const {
    std::vector<std::string> texts;
    for (const JournalEntry& entry : Journal()) {
        if (entry.Way != Direction::Received) continue;
        std::string& text = texts.emplace_back(entry.Malformed ? "!" : "");
        text += ToHex(entry.Data);
    }
    return texts;
}

bool Simulator::WaitForEntries(std::size_t count, int timeoutMs) const {
    std::unique_lock lock(body_->mutex);
    return body_->changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                   [&] { return body_->journal.size() >= count; });
}

void Simulator::AddFault(FaultKind kind, int code, int n, int number, Bytes reply) {
    const std::lock_guard lock(body_->mutex);
    body_->faults.Add({kind, code, n, number, std::move(reply)});
}

void Simulator::Silence(int code, int n) {
    AddFault(FaultKind::Silence, code, n);
}

void Simulator::Delay(int code, int ms, int n) {
    AddFault(FaultKind::Delay, code, n, ms);
}

void Simulator::BadChecksum(int code, int n) {
    AddFault(FaultKind::BadChecksum, code, n);
}

void Simulator::WrongCode(int code, int n) {
    AddFault(FaultKind::WrongCode, code, n);
}

void Simulator::InterfaceError(int code, int errorClass, int n) {
    AddFault(FaultKind::InterfaceError, code, n, errorClass);
}

void Simulator::ShortFrame(int code, int n, int keep) {
    AddFault(FaultKind::ShortFrame, code, n, keep);
}

void Simulator::SplitDelivery(int code, int gapMs, int n) {
    AddFault(FaultKind::SplitDelivery, code, n, gapMs);
}

void Simulator::WrongLength(int code, int n, int change) {
    AddFault(FaultKind::WrongLength, code, n, change);
}

void Simulator::AcknowledgeThenSilence(int code, int n) {
    AddFault(FaultKind::AcknowledgeThenSilence, code, n, -1);
}

void Simulator::AcknowledgeOther(int code, int acknowledged, int n) {
    AddFault(FaultKind::AcknowledgeThenSilence, code, n, acknowledged);
}

void Simulator::FlipBit(int code, int bit, int n) {
    AddFault(FaultKind::FlipBit, code, n, bit);
}

void Simulator::DropByte(int code, int index, int n) {
    AddFault(FaultKind::DropByte, code, n, index);
}

void Simulator::ReplaceReply(int code, Bytes bytes, int n) {
    AddFault(FaultKind::ReplaceReply, code, n, 0, std::move(bytes));
}

void Simulator::VanishAt(int code, int bytesSent) {
    AddFault(FaultKind::Vanish, code, 1, bytesSent);
}

void Simulator::RefuseMapBlocks(bool refuse) {
    const std::lock_guard lock(body_->mutex);
    body_->device.RefuseMapBlocks = refuse;
}

void Simulator::ObeySelects(SelectWrites which) {
    const std::lock_guard lock(body_->mutex);
    body_->device.Selects = which;
}

void Simulator::DeadLine(bool dead) {
    const std::lock_guard lock(body_->mutex);
    body_->dead = dead;
}

void Simulator::Vanish() {
    body_->PostAndWait(Command::Vanish);
}

void Simulator::Return() {
    body_->PostAndWait(Command::Return);
}

void Simulator::Say(Bytes bytes) {
    if (!bytes.empty()) body_->PostAndWait(Command::Say, std::move(bytes));
}

void Simulator::Say(std::string_view text) {
    Bytes bytes(text.size());
    std::copy(text.begin(), text.end(), bytes.begin());
    Say(std::move(bytes));
}

void Simulator::Announce() {
    std::string text;
    {
        const std::lock_guard lock(body_->mutex);
        text = body_->device.Announcement();
    }
    Say(text);
}

void Simulator::ClearFaults() {
    const std::lock_guard lock(body_->mutex);
    body_->faults.Clear();
    body_->dead = false;
    body_->device.RefuseMapBlocks = false;
    body_->device.Selects = body_->options.Selects;
}

}  // namespace powerfc
