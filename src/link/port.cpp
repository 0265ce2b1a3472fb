#include "link/port.h"

#include <QFileInfo>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <cstdlib>

#include "link/progress.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

#ifdef __linux__
#include <linux/serial.h>
#include <sys/ioctl.h>
#endif

namespace zandrel {

SerialPort MSComm1;
std::array<SerialPort, 16> MSComm;
SerialPort MSComm2;

std::array<MenuItem, 16> mnuCom;
MenuItem mnuComNone = {.Caption = "None found"};
MenuItem mnuComAuto = {.Caption = "Auto Detect"};
MenuItem mnuComShowAll = {.Caption = "Show All"};

struct SerialPort::Platform {
    QSerialPort Port;
    bool Failed = false;
    bool Forbidden = false;
    std::string Error;

    // A time-out is Qt's word for nothing having come yet. Everything else means that the port is gone; it
    // is closed later, by whoever is told, and not inside its own error.
    void LookForFailure() {
        const auto error = Port.error();
        if (error == QSerialPort::NoError) return;
        if (error != QSerialPort::TimeoutError) {
            Failed = true;
            Error = Port.errorString().toStdString();
        }
        Port.clearError();
    }
};

namespace {

constexpr qint64 kInBufferSize = 1024;

// What the maker of the adapter behind `device` calls it; empty where the system knows no name.
std::string ProductText(const std::string& device) {
    const QString wanted = QFileInfo(QString::fromStdString(device)).canonicalFilePath();
    if (wanted.isEmpty()) return {};
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
        if (QFileInfo(port.systemLocation()).canonicalFilePath() == wanted) {
            return port.description().trimmed().toStdString();
        }
    }
    return {};
}

// An FTDI adapter holds short replies back for 16 ms unless it is asked not to.
void AskForLowLatency([[maybe_unused]] QSerialPort& port) {
#ifdef __linux__
    serial_struct serial{};
    const int handle = port.handle();
    if (ioctl(handle, TIOCGSERIAL, &serial) != 0) return;
    serial.flags |= ASYNC_LOW_LATENCY;
    static_cast<void>(ioctl(handle, TIOCSSERIAL, &serial));
#endif
}

std::string DeviceFromEnvironment(int number) {
    const char* ports = std::getenv("ZANDREL_PORTS");
    if (ports == nullptr) return {};
    for (const std::string& entry : Split(ports, ',')) {
        const auto equals = entry.find('=');
        if (equals == entry.npos) continue;
        const auto port = StrictWhole(entry.substr(0, equals));
        if (port && *port == number) return Trim(entry.substr(equals + 1));
    }
    return {};
}

void UntickAll() {
    for (MenuItem& item : mnuCom) item.Checked = false;
}

}  // namespace

SerialPort::SerialPort() = default;
SerialPort::~SerialPort() = default;

bool SerialPort::Open() {
    platform_ = std::make_unique<Platform>();
    QSerialPort& port = platform_->Port;
    port.setPortName(QString::fromStdString(ComDevice(CommPort)));
    const bool open = port.open(QIODevice::ReadWrite) && port.setBaudRate(QSerialPort::Baud57600) &&
                      port.setParity(QSerialPort::NoParity) && port.setDataBits(QSerialPort::Data8) &&
                      port.setStopBits(QSerialPort::OneStop) &&
                      port.setFlowControl(QSerialPort::NoFlowControl);
    if (!open) {
        platform_->Error = port.errorString().toStdString();
        platform_->Forbidden = port.error() == QSerialPort::PermissionError;
        if (platform_->Forbidden) {
            platform_->Error += " (in use, or the user is not in the group dialout)";
        }
        port.close();
        return false;
    }
    port.setReadBufferSize(kInBufferSize);
    AskForLowLatency(port);
    port.clearError();
    return true;
}

void SerialPort::Close() {
    if (platform_ != nullptr) platform_->Port.close();
}

bool SerialPort::PortOpen() const {
    return platform_ != nullptr && platform_->Port.isOpen();
}

int SerialPort::InBufferCount() {
    if (!PortOpen()) return 0;
    // Qt takes bytes from the driver only while it waits for them.
    if (!platform_->Failed && !platform_->Port.waitForReadyRead(0)) platform_->LookForFailure();
    return static_cast<int>(platform_->Port.bytesAvailable());
}

ByteString SerialPort::Input(int count) {
    if (!PortOpen()) return {};
    const int available = InBufferCount();
    return platform_->Port.read(count == 0 ? available : count).toStdString();
}

bool SerialPort::Output(const ByteString& bytes) {
    if (!PortOpen() || platform_->Failed) return false;
    QSerialPort& port = platform_->Port;
    port.write(bytes.data(), static_cast<qint64>(bytes.size()));
    port.flush();
    while (port.bytesToWrite() > 0 && !platform_->Failed) {
        if (!port.waitForBytesWritten(100)) {
            platform_->Failed = true;
            platform_->Error = port.errorString().toStdString();
        }
    }
    platform_->LookForFailure();
    return !platform_->Failed;
}

bool SerialPort::WaitForInput(int milliseconds) {
    if (!PortOpen() || platform_->Failed) return false;
    if (!platform_->Port.waitForReadyRead(milliseconds)) platform_->LookForFailure();
    return !platform_->Failed;
}

std::string SerialPort::ErrorText() const {
    return platform_ == nullptr ? "" : platform_->Error;
}

bool SerialPort::Forbidden() const {
    return platform_ != nullptr && platform_->Forbidden;
}

std::string ComDevice(int number) {
    const std::string device = DeviceFromEnvironment(number);
    if (!device.empty()) return device;
#ifdef _WIN32
    return "COM" + std::to_string(number);
#else
    if (number <= 4) return "/dev/ttyS" + std::to_string(number - 1);
    if (number <= 12) return "/dev/ttyUSB" + std::to_string(number - 5);
    return "/dev/ttyACM" + std::to_string(number - 13);
#endif
}

std::string ComCaption(int number) {
    const std::string device = ComDevice(number);
    std::string caption = "COM" + std::to_string(number);
    if (device != caption) caption += "  " + device;
    const std::string product = ProductText(device);
    if (!product.empty()) caption += "  " + product;
    return caption;
}

bool ComPortExists(int number) {
    MSComm2.CommPort = number;
    if (!MSComm2.Open()) return false;
    MSComm2.Close();
    return true;
}

void mnuCom_Click(int index) {
    if (MSComm1.PortOpen()) MSComm1.Close();
    MenuItem& item = mnuCom[static_cast<std::size_t>(index)];
    if (item.Checked) {
        item.Checked = false;
        return;
    }
    UntickAll();
    MSComm1.CommPort = index + 1;
    if (!MSComm1.Open()) {
        if (MSComm1.Forbidden())
            DebugLog("Error opening " + ComDevice(index + 1) + ": " + MSComm1.ErrorText());
        MessageBox("Error opening Com" + std::to_string(index + 1), Box::Critical);
        return;
    }
    item.Checked = true;
}

void ComPortMenu_Open() {
    const LongOperation running;  // nothing else is to begin while ports are tried
    mnuComNone.Visible = true;
    for (int n = 1; n <= 16; ++n) {
        MenuItem& item = mnuCom[static_cast<std::size_t>(n - 1)];
        Yield();  // the user may have chosen a port meanwhile: its tick is looked at only now
        item.Visible = mnuComShowAll.Checked || item.Checked || ComPortExists(n);
        if (item.Visible) mnuComNone.Visible = false;
    }
}

void mnuComShowAll_Click() {
    mnuComShowAll.Checked = !mnuComShowAll.Checked;
    ComPortMenu_Open();
}

}  // namespace zandrel
