/// A server that stands further away.
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

namespace zev::test {

/// Listens on a port of its own and passes the bytes of one connection on to a server and
/// back, each `delay` after they came. Ends with the object, and the connection with it.
class DelayingProxy {
 public:
  using Delay = std::chrono::microseconds;

  /// Throws std::runtime_error when it cannot listen or reach the server.
  DelayingProxy(const std::string &host, const std::string &port, Delay delay);
  ~DelayingProxy();
  DelayingProxy(const DelayingProxy &) = delete;
  DelayingProxy &operator=(const DelayingProxy &) = delete;

  const std::string &port() const { return port_; }

 private:
  void serve(Delay delay) const;

  int listener_ = -1;
  int server_ = -1;
  std::string port_;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace zev::test
