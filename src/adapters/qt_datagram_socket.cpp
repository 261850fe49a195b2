#include "adapters/qt_datagram_socket.h"

#include <QNetworkInterface>
#include <QUdpSocket>
#include <QVariant>

#include <algorithm>
#include <array>
#include <deque>

namespace ecu::adapters {

namespace {

using platform::BindFault;
using platform::BindResult;
using platform::Datagram;
using platform::Ipv4;
using platform::Peer;

// Taken from the system with one event, so that a flood leaves room for the serial line, the timers and the user.
constexpr int taken_at_once = 64;
// Taken in one drain, so that a flood faster than the drain does not hold it for ever.
constexpr int drained_at_most = 4096;
// What the system may hold for us while the program is busy elsewhere; it may grant less.
constexpr int system_buffer = 1 << 20;

BindFault fault_of(QAbstractSocket::SocketError error) {
    switch (error) {
    case QAbstractSocket::SocketAccessError:
        return BindFault::not_permitted;
    case QAbstractSocket::AddressInUseError:
        return BindFault::in_use;
    case QAbstractSocket::SocketAddressNotAvailableError:
        return BindFault::no_such_address;
    default:
        return BindFault::other;
    }
}

class QtDatagramSocket final : public platform::DatagramSocket {
public:
    // All addresses are those of IPv4: a socket of both families would give senders as "::ffff:10.0.0.7".
    BindResult bind(std::optional<Ipv4> local_address, std::uint16_t local_port) override {
        close();
        socket_.reset(std::make_unique<QUdpSocket>().release()); // a used one keeps the error of its first refusal
        // QUdpSocket is silent inside this slot and stays so until it has been read: the slot reads at least once, and
        // nothing in it lets events through.
        QObject::connect(socket_.get(), &QUdpSocket::readyRead, socket_.get(), [this] { take_arrived(); });
        const QHostAddress address = local_address ? QHostAddress(*local_address) : QHostAddress(QHostAddress::AnyIPv4);
        if (!socket_->bind(address, local_port, QAbstractSocket::DontShareAddress)) {
            const BindFault fault = fault_of(socket_->error());
            return {fault,
                    fault == BindFault::not_permitted ? "permission denied" : socket_->errorString().toStdString()};
        }
        socket_->setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, system_buffer);
        return {};
    }

    void close() override {
        if (socket_) {
            socket_->close();
        }
        waiting_.clear();
        bytes_waiting_ = 0;
    }

    void set_remote(std::optional<Peer> remote, bool hear_it_alone) override {
        remote_ = remote;
        hear_remote_alone_ = hear_it_alone;
    }

    void send(std::span<const std::uint8_t> datagram) override {
        if (remote_) {
            send_to(*remote_, datagram);
        }
    }

    void send_to(const Peer& peer, std::span<const std::uint8_t> datagram) override {
        if (bound()) {
            socket_->writeDatagram(reinterpret_cast<const char*>(datagram.data()), static_cast<qint64>(datagram.size()),
                                   QHostAddress(peer.address), peer.port);
        }
    }

    std::size_t available() const override { return bytes_waiting_; }

    std::vector<std::uint8_t> read(std::size_t at_most) override {
        std::vector<std::uint8_t> result;
        while (result.size() < at_most && !waiting_.empty()) {
            auto& bytes = waiting_.front().bytes;
            const auto end =
                bytes.begin() + static_cast<std::ptrdiff_t>(std::min(at_most - result.size(), bytes.size()));
            result.insert(result.end(), bytes.begin(), end);
            bytes.erase(bytes.begin(), end);
            if (bytes.empty()) {
                waiting_.pop_front();
            }
        }
        bytes_waiting_ -= result.size();
        return result;
    }

    std::optional<Datagram> take_datagram() override {
        if (waiting_.empty()) {
            return std::nullopt;
        }
        Datagram datagram = std::move(waiting_.front());
        waiting_.pop_front();
        bytes_waiting_ -= datagram.bytes.size();
        return datagram;
    }

    void discard_input() override {
        take_from_system(drained_at_most);
        waiting_.clear();
        bytes_waiting_ = 0;
    }

    std::vector<Ipv4> local_addresses() const override {
        std::vector<Ipv4> result;
        for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
            if (address.protocol() == QAbstractSocket::IPv4Protocol && !address.isLoopback()) {
                result.push_back(address.toIPv4Address());
            }
        }
        return result;
    }

private:
    // It may be replaced inside its own signal.
    struct Later {
        void operator()(QUdpSocket* socket) const {
            socket->disconnect();
            socket->close();
            socket->deleteLater();
        }
    };

    bool bound() const { return socket_ && socket_->state() == QAbstractSocket::BoundState; }

    void take_arrived() {
        take_from_system(taken_at_once);
        if (!waiting_.empty() && on_datagrams) {
            on_datagrams();
        }
    }

    // A read that fails, as one does on some systems after a sending to a port that nobody holds, ends the taking; the
    // next arrival brings it back.
    void take_from_system(int at_most) {
        if (!bound()) {
            return;
        }
        QHostAddress sender;
        quint16 port = 0;
        for (int taken = 0; taken < at_most; ++taken) {
            const qint64 size = socket_->readDatagram(buffer_.data(), buffer_.size(), &sender, &port);
            if (size < 0) {
                return;
            }
            keep({sender.toIPv4Address(), port}, static_cast<std::size_t>(size));
        }
    }

    void keep(const Peer& from, std::size_t size) {
        const bool unheard = hear_remote_alone_ && from != remote_;
        if (unheard || waiting_.size() >= datagrams_kept) {
            return;
        }
        waiting_.push_back({from, {buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(size)}});
        bytes_waiting_ += size;
    }

    std::unique_ptr<QUdpSocket, Later> socket_; // none before the first bind
    std::optional<Peer> remote_;
    bool hear_remote_alone_ = false;
    std::deque<Datagram> waiting_;
    std::size_t bytes_waiting_ = 0;
    std::array<char, bytes_kept> buffer_{};
};

} // namespace

std::unique_ptr<platform::DatagramSocket> QtDatagramSockets::make_datagram_socket() {
    return std::make_unique<QtDatagramSocket>();
}

} // namespace ecu::adapters
