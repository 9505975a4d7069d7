// BAutolock over lockers and loopers.
#include <Autolock.h>
#include <Locker.h>
#include <Looper.h>

#include <gtest/gtest.h>

#include <thread>

TEST(Autolock, HoldsALockerForItsScope) {
    BLocker locker;
    {
        BAutolock autolock(&locker);
        EXPECT_TRUE(autolock.IsLocked());
        EXPECT_TRUE(locker.IsLocked());
    }
    EXPECT_FALSE(locker.IsLocked());
}

TEST(Autolock, TakesALockerByReference) {
    BLocker locker;
    {
        BAutolock autolock(locker);
        EXPECT_TRUE(autolock.IsLocked());
        EXPECT_EQ(locker.CountLocks(), 1);
    }
    EXPECT_EQ(locker.CountLocks(), 0);
}

TEST(Autolock, NestsInsideAnExistingLock) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());
    {
        BAutolock autolock(&locker);
        EXPECT_EQ(locker.CountLocks(), 2);
    }
    EXPECT_EQ(locker.CountLocks(), 1);
    locker.Unlock();
}

TEST(Autolock, UnlockGivesTheLockBackEarlyAndOnlyOnce) {
    BLocker locker;
    {
        BAutolock autolock(&locker);
        autolock.Unlock();
        EXPECT_FALSE(autolock.IsLocked());
        EXPECT_FALSE(locker.IsLocked());
        autolock.Unlock();
    }
    EXPECT_EQ(locker.CountLocks(), 0);
}

TEST(Autolock, NullLockerOrLooperIsNotLocked) {
    BAutolock fromLocker(static_cast<BLocker*>(NULL));
    EXPECT_FALSE(fromLocker.IsLocked());
    BAutolock fromLooper(static_cast<BLooper*>(NULL));
    EXPECT_FALSE(fromLooper.IsLocked());
}

TEST(Autolock, HoldsALooperForItsScope) {
    // A new looper starts locked by the thread that made it.
    BLooper* looper = new BLooper("autolocked");
    looper->Unlock();
    {
        BAutolock autolock(looper);
        EXPECT_TRUE(autolock.IsLocked());
        EXPECT_TRUE(looper->IsLocked());

        bool lockedThere = true;
        std::thread other([&] { lockedThere = looper->IsLocked(); });
        other.join();
        EXPECT_FALSE(lockedThere);
    }
    EXPECT_FALSE(looper->IsLocked());

    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}
