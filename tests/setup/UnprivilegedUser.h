// Takes this process's special rights away for a while: tests in a container run as the superuser,
// whom neither file modes nor limits on processes stop. Does nothing for anybody else.
#pragma once

#include <gtest/gtest.h>

#include <sys/types.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/prctl.h>
#endif

namespace veltrix::test {

class UnprivilegedUser {
  public:
    UnprivilegedUser() {
        if (wasRoot_) {
            become(kNobody);
        }
    }
    ~UnprivilegedUser() {
        if (wasRoot_) {
            become(0);
        }
    }
    UnprivilegedUser(const UnprivilegedUser&) = delete;
    UnprivilegedUser& operator=(const UnprivilegedUser&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;

    static void become(uid_t user) {
#if defined(__linux__)
        EXPECT_EQ(::setresuid(user, user, 0), 0);
        // Leak checkers look at this process from outside, which a change of user forbids.
        ::prctl(PR_SET_DUMPABLE, 1);
#else
        EXPECT_EQ(::seteuid(user), 0);
#endif
    }

    const bool wasRoot_ = ::geteuid() == 0;
};

}  // namespace veltrix::test
