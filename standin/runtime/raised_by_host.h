#pragma once

namespace lvx::runtime {

/// Marks an exception that the host's own side raises to end a command: a user who interrupts it, a script that doesn't
/// fit. Its class and its object are the host's, so it may be kept for as long as one likes; one that a module raises
/// can't be kept, since its class leaves memory with the module's library.
class __attribute__((visibility("default"))) RaisedByHost {
 public:
  virtual ~RaisedByHost() = default;

 protected:
  RaisedByHost() = default;
  RaisedByHost(const RaisedByHost&) = default;
  RaisedByHost& operator=(const RaisedByHost&) = default;
};

}  // namespace lvx::runtime
