// All that a test writes as one commit: disks may be slow.
#pragma once

#include <memory>

#include "core/ormel.h"
#include "store/database.h"

namespace ormel::test {

class OneCommit {
 public:
  explicit OneCommit(const Ormel& ormel) : all_(std::make_unique<Transaction>(ormel.db())) {}
  ~OneCommit() noexcept { all_.reset(); }
  OneCommit(const OneCommit&) = delete;
  OneCommit& operator=(const OneCommit&) = delete;

 private:
  std::unique_ptr<Transaction> all_;
};

}  // namespace ormel::test
