#include "adapters/qt_datagram_socket.h"

#include <QHostInfo>
#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QUdpSocket>

#include <algorithm>
#include <deque>

namespace ecu::adapters {

namespace {

QHostAddress resolve(const std::string& host) {
    const QString name = QString::fromStdString(host).trimmed();
    QHostAddress address;
    if (address.setAddress(name)) {
        return address;
    }
    const auto found = QHostInfo::fromName(name).addresses();
    return found.isEmpty() ? QHostAddress() : found.first();
}

class QtDatagramSocket final : public platform::DatagramSocket {
public:
    QtDatagramSocket() {
        QObject::connect(&socket_, &QUdpSocket::readyRead, &socket_, [this] { take_pending(); });
    }

    std::string bind(std::uint16_t local_port) override {
        close();
        if (socket_.bind(QHostAddress::AnyIPv4, local_port)) {
            return {};
        }
        const std::string reason = socket_.errorString().toStdString();
        return reason.empty() ? "the port cannot be bound" : reason;
    }

    void set_remote(const std::string& host, std::uint16_t port) override {
        remote_ = resolve(host);
        remote_port_ = port;
    }

    void close() override {
        socket_.close();
        waiting_.clear();
    }

    void send(std::span<const std::uint8_t> datagram) override {
        if (!remote_.isNull()) {
            socket_.writeDatagram(reinterpret_cast<const char*>(datagram.data()), static_cast<qint64>(datagram.size()),
                                  remote_, remote_port_);
        }
    }

    std::size_t available() const override {
        std::size_t bytes = 0;
        for (const Received& datagram : waiting_) {
            bytes += datagram.bytes.size();
        }
        return bytes;
    }

    std::vector<std::uint8_t> read(std::size_t at_most) override {
        std::vector<std::uint8_t> result;
        while (result.size() < at_most && !waiting_.empty()) {
            auto& bytes = waiting_.front().bytes;
            const auto end =
                bytes.begin() + static_cast<std::ptrdiff_t>(std::min(at_most - result.size(), bytes.size()));
            result.insert(result.end(), bytes.begin(), end);
            bytes.erase(bytes.begin(), end);
            sender_ = waiting_.front().sender;
            if (bytes.empty()) {
                waiting_.pop_front();
            }
        }
        return result;
    }

    std::vector<std::uint8_t> read_datagram() override {
        if (waiting_.empty()) {
            return {};
        }
        Received datagram = std::move(waiting_.front());
        waiting_.pop_front();
        sender_ = datagram.sender;
        return std::move(datagram.bytes);
    }

    std::string sender_address() const override { return sender_; }

    std::string local_address() const override {
        for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
            if (address.protocol() == QAbstractSocket::IPv4Protocol && !address.isLoopback()) {
                return address.toString().toStdString();
            }
        }
        return "127.0.0.1";
    }

private:
    struct Received {
        std::vector<std::uint8_t> bytes;
        std::string sender;
    };

    void take_pending() {
        while (socket_.hasPendingDatagrams()) {
            const QNetworkDatagram datagram = socket_.receiveDatagram();
            const QByteArray data = datagram.data();
            waiting_.push_back({{data.begin(), data.end()}, datagram.senderAddress().toString().toStdString()});
            if (on_datagram) {
                on_datagram();
            }
        }
    }

    QUdpSocket socket_;
    QHostAddress remote_;
    std::uint16_t remote_port_ = 0;
    std::deque<Received> waiting_;
    std::string sender_;
};

} // namespace

std::unique_ptr<platform::DatagramSocket> QtDatagramSockets::make_datagram_socket() {
    return std::make_unique<QtDatagramSocket>();
}

} // namespace ecu::adapters
