#include "tests/server/delaying_proxy.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <deque>
#include <stdexcept>
#include <vector>

namespace zev::test {
namespace {

using Clock = std::chrono::steady_clock;

sockaddr_in addressOf(const std::string &host, int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  if (inet_pton(AF_INET, host.c_str(), &address.sin_addr) != 1)
    throw std::runtime_error("no address: " + host);
  return address;
}

void sendAtOnce(int socket) {
  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

/// One direction: what came in waits for its time.
class Lane {
 public:
  Lane(int from, int to, DelayingProxy::Delay delay)
      : from_(from), to_(to), delay_(delay) {}

  /// False when the sender has gone.
  bool take() {
    std::vector<char> bytes(1 << 16);
    const ssize_t got = recv(from_, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (got < 0 && (errno == EAGAIN || errno == EINTR)) return true;
    if (got <= 0) return false;
    bytes.resize(static_cast<std::size_t>(got));
    waiting_.push_back({Clock::now() + delay_, std::move(bytes)});
    return true;
  }
  /// Passes on what is due; false when the receiver has gone.
  bool pass() {
    for (; !waiting_.empty() && waiting_.front().due <= Clock::now();
         waiting_.pop_front()) {
      const std::vector<char> &bytes = waiting_.front().bytes;
      for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t n =
            send(to_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n <= 0) return false;
        sent += static_cast<std::size_t>(n);
      }
    }
    return true;
  }
  int from() const { return from_; }
  bool isWaiting() const { return !waiting_.empty(); }
  Clock::time_point due() const { return waiting_.front().due; }

 private:
  struct Chunk {
    Clock::time_point due;
    std::vector<char> bytes;
  };
  int from_, to_;
  DelayingProxy::Delay delay_;
  std::deque<Chunk> waiting_;
};

/// Until something comes in or is due, and not longer than a moment.
void await(const Lane &out, const Lane &back) {
  Clock::time_point until = Clock::now() + std::chrono::milliseconds(20);
  for (const Lane *lane : {&out, &back}) {
    if (lane->isWaiting()) until = std::min(until, lane->due());
  }
  const auto left =
      std::chrono::duration_cast<std::chrono::nanoseconds>(until - Clock::now());
  const timespec time{0, std::max<long>(0, left.count())};
  pollfd sockets[] = {{out.from(), POLLIN, 0}, {back.from(), POLLIN, 0}};
  ppoll(sockets, 2, &time, nullptr);
}

}  // namespace

DelayingProxy::DelayingProxy(const std::string &host, const std::string &port,
                             Delay delay) {
  listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  server_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in here = addressOf("127.0.0.1", 0);
  const sockaddr_in there = addressOf(host, std::stoi(port));
  socklen_t size = sizeof here;
  auto *address = reinterpret_cast<sockaddr *>(&here);
  if (bind(listener_, address, size) != 0 || listen(listener_, 1) != 0 ||
      getsockname(listener_, address, &size) != 0 ||
      connect(server_, reinterpret_cast<const sockaddr *>(&there), sizeof there) != 0)
    throw std::runtime_error("no proxy to " + host + ":" + port);
  port_ = std::to_string(ntohs(here.sin_port));
  thread_ = std::thread([this, delay] { serve(delay); });
}

DelayingProxy::~DelayingProxy() {
  ends_ = true;
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
  close(server_);
}

void DelayingProxy::serve(Delay delay) const {
  const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  if (client < 0) return;
  sendAtOnce(client);
  sendAtOnce(server_);
  Lane out(client, server_, delay), back(server_, client, delay);
  while (!ends_ && out.take() && back.take() && out.pass() && back.pass()) {
    await(out, back);
  }
  close(client);
}

}  // namespace zev::test
