#pragma once

#include <functional>

namespace lodex {

/// Lets pending interface events run between two units of a long job.
class EventPump {
 public:
  virtual ~EventPump() = default;
  virtual void pump() = 0;
};

/// Nothing is pending where there is no screen. A test may act as the user in between.
class NoEvents : public EventPump {
 public:
  NoEvents() = default;
  explicit NoEvents(std::function<void()> act) : act_(std::move(act)) {}
  void pump() override {
    if (act_) act_();
  }

 private:
  std::function<void()> act_;
};

}  // namespace lodex
