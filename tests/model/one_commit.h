// All that a test writes as one commit: disks may be slow.
#pragma once

#include <memory>

#include "core/ormel.h"
#include "document/document.h"
#include "model/validity.h"
#include "store/database.h"

namespace ormel::test {

class OneCommit {
 public:
  explicit OneCommit(Ormel& ormel)
      : all_(std::make_unique<Transaction>(ormel.db())), document_(ormel), followed_(ormel) {}
  ~OneCommit() noexcept { all_.reset(); }
  /// What the test has written by itself is no command's.
  void Settle() { followed_.Settle(); }
  OneCommit(const OneCommit&) = delete;
  OneCommit& operator=(const OneCommit&) = delete;

 private:
  /// Asks what a map would ask.
  class Followed final : public ChangeListener {
   public:
    explicit Followed(Ormel& ormel) : ormel_(ormel) { ormel.changes.Subscribe(*this); }
    ~Followed() override { ormel_.changes.Unsubscribe(*this); }
    Followed(const Followed&) = delete;
    Followed& operator=(const Followed&) = delete;
    void CommandEnded(const ChangeRecord& record) override { follower_.CommandEnded(ormel_, record); }
    void Settle() { ormel_.db().TakeChanges(); }

   private:
    Ormel& ormel_;
    SolutionFollower follower_;
  };
  std::unique_ptr<Transaction> all_;
  Document document_;
  Followed followed_;
};

}  // namespace ormel::test
