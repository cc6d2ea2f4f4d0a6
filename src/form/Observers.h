#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <deque>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

/// Observers of changes, and the commands of controls.
namespace lodex {

/// The place of one observer in a list of observers: it stops observing when this ends. Keep it
/// beside what the observer uses. Ending it is safe at any time: while observers are being
/// called, and after the observed object is gone.
class [[nodiscard]] Subscription {
 public:
  /// A list of observers, whatever it passes to them.
  class List {
   public:
    virtual ~List() = default;
    virtual void remove(std::uint64_t id) = 0;
  };

  Subscription() = default;
  Subscription(std::weak_ptr<List> list, std::uint64_t id) : list_(std::move(list)), id_(id) {}
  Subscription(Subscription&& other) noexcept
      : list_(std::exchange(other.list_, {})), id_(other.id_) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this == &other) return *this;
    end();
    list_ = std::exchange(other.list_, {});
    id_ = other.id_;
    return *this;
  }
  ~Subscription() { end(); }

  void end() {
    if (const auto list = std::exchange(list_, {}).lock()) list->remove(id_);
  }
  /// False once it ended or the observed object is gone.
  bool active() const { return !list_.expired(); }

 private:
  friend void keep(Subscription subscription);
  std::weak_ptr<List> list_;
  std::uint64_t id_ = 0;
};

/// Lets an observer observe until the observed object ends. For observers that use nothing that may
/// end before, such as a form that reacts to its own controls.
inline void keep(Subscription subscription) {
  subscription.list_.reset();
}

/// Subscriptions that end together.
class Subscriptions {
 public:
  void add(Subscription subscription) {
    std::erase_if(all_, [](const Subscription& one) { return !one.active(); });
    all_.push_back(std::move(subscription));
  }

 private:
  std::vector<Subscription> all_;
};

/// A list of observers. They are called in the order in which they came; one that is added during
/// a call is called as well. An observer may end itself, others or the observed object.
template <typename... Arguments>
class Observers {
 public:
  using Observer = std::function<void(Arguments...)>;

  Observers() = default;
  ~Observers() { list_->ended = true; }
  Observers(const Observers&) = delete;
  Observers& operator=(const Observers&) = delete;

  Subscription add(Observer observer) {
    list_->entries.push_back({++list_->lastId, std::move(observer)});
    return {list_, list_->lastId};
  }

  void notify(Arguments... arguments) const {
    const std::shared_ptr<Observed> list = list_;  // an observer may end the observed object
    const Calling calling(*list);
    for (std::size_t i = 0; i < list->entries.size() && !list->ended; ++i) {
      if (list->entries[i].id != 0) list->entries[i].observer(arguments...);
    }
  }

 private:
  struct Entry {
    std::uint64_t id;  // 0 for one that ended while observers were being called
    Observer observer;
  };

  struct Observed : Subscription::List {
    std::deque<Entry> entries;  // a deque: an observer may add another one
    std::uint64_t lastId = 0;
    int calls = 0;
    bool ended = false;

    void remove(std::uint64_t id) override {
      for (Entry& entry : entries) {
        if (entry.id == id) entry.id = 0;
      }
      drop();
    }
    // An observer must not be destroyed while it runs. What the ended ones own may end others, so
    // they are destroyed when the list is in order again.
    void drop() {
      if (calls > 0) return;
      const auto lives = [](const Entry& entry) { return entry.id != 0; };
      const auto first = std::stable_partition(entries.begin(), entries.end(), lives);
      const std::vector<Entry> dropped(std::make_move_iterator(first),
                                       std::make_move_iterator(entries.end()));
      entries.erase(first, entries.end());
    }
  };

  class Calling {
   public:
    explicit Calling(Observed& list) : list_(list) { ++list_.calls; }
    ~Calling() {
      --list_.calls;
      list_.drop();
    }
    Calling(const Calling&) = delete;
    Calling& operator=(const Calling&) = delete;

   private:
    Observed& list_;
  };

  std::shared_ptr<Observed> list_ = std::make_shared<Observed>();
};

/// What a click or another act of the user does. It is set once; whoever else needs to know of
/// it observes the control.
template <typename... Arguments>
class ControlCommand {
 public:
  void set(std::function<void(Arguments...)> act) {
    assert(!act_ && "the control has a command already");
    act_ = std::move(act);
  }
  explicit operator bool() const { return static_cast<bool>(act_); }
  void operator()(Arguments... arguments) const {
    if (act_) act_(arguments...);
  }

 private:
  std::function<void(Arguments...)> act_;
};

}  // namespace lodex
