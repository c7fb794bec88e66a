#include "platform/NotificationCenter.hpp"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

class NotificationCenter : public testing::Test {
protected:
    using Token = std::shared_ptr<int>;

    static Token makeToken() { return std::make_shared<int>(); }

    /// An observer of "saved" that writes its letter into `heard`.
    Token observe(char letter) {
        Token token = makeToken();
        center.addObserver("saved", token, [this, letter](std::string_view) { heard += letter; });
        return token;
    }

    platform::NotificationCenter center;
    std::string heard;
};

TEST_F(NotificationCenter, EveryObserverOfTheNameHearsItOnceInTheOrderOfRegistration) {
    const Token a = observe('a');
    const Token b = observe('b');
    center.post("saved");
    EXPECT_EQ(heard, "ab");
}

TEST_F(NotificationCenter, ANotificationOfAnotherNameIsNotHeard) {
    const Token a = observe('a');
    center.post("stored");
    EXPECT_EQ(heard, "");
}

TEST_F(NotificationCenter, APostWithoutObserversDoesNothing) {
    center.post("saved");
    EXPECT_EQ(heard, "");
}

TEST_F(NotificationCenter, TheObserverIsToldTheName) {
    const Token token = makeToken();
    center.addObserver("saved", token, [this](std::string_view name) { heard = name; });
    center.post("saved");
    EXPECT_EQ(heard, "saved");
}

TEST_F(NotificationCenter, ItIsDeliveredOnThePostingThreadBeforePostReturns) {
    const Token token = makeToken();
    std::thread::id deliveredOn;
    center.addObserver("saved", token, [&](std::string_view) { deliveredOn = std::this_thread::get_id(); });
    std::thread poster([&] {
        center.post("saved");
        EXPECT_EQ(deliveredOn, std::this_thread::get_id());
    });
    poster.join();
}

TEST_F(NotificationCenter, AnObserverWhoseTokenHasGoneIsSkipped) {
    Token a = observe('a');
    const Token b = observe('b');
    a.reset();
    center.post("saved");
    EXPECT_EQ(heard, "b");
}

TEST_F(NotificationCenter, AnObserverWhoseTokenHasGoneIsForgottenByThePostAfter) {
    const auto captured = std::make_shared<int>();
    Token token = makeToken();
    center.addObserver("saved", token, [captured](std::string_view) {});
    token.reset();
    EXPECT_EQ(captured.use_count(), 2);
    center.post("another name");
    EXPECT_EQ(captured.use_count(), 1);
}

TEST_F(NotificationCenter, AnObserverRemovedByAnEarlierOneIsSkipped) {
    const Token first = makeToken();
    Token second;
    center.addObserver("saved", first, [&second](std::string_view) { second.reset(); });
    second = observe('b');
    center.post("saved");
    EXPECT_EQ(heard, "");
}

TEST_F(NotificationCenter, AnObserverMayRemoveItself) {
    Token token = makeToken();
    center.addObserver("saved", token, [&](std::string_view) {
        heard += 'x';
        token.reset();
    });
    center.post("saved");
    center.post("saved");
    EXPECT_EQ(heard, "x");
}

TEST_F(NotificationCenter, AnObserverAddedDuringAPostHearsOnlyTheNext) {
    const Token first = makeToken();
    Token second;
    center.addObserver("saved", first, [&](std::string_view) {
        if (!second) {
            second = observe('b');
        }
    });
    center.post("saved");
    EXPECT_EQ(heard, "");
    center.post("saved");
    EXPECT_EQ(heard, "b");
}

TEST_F(NotificationCenter, AnObserverMayPost) {
    const Token a = observe('a');
    const Token chain = makeToken();
    center.addObserver("closed", chain, [this](std::string_view) { center.post("saved"); });
    center.post("closed");
    EXPECT_EQ(heard, "a");
}

TEST_F(NotificationCenter, WhatAForgottenObserverCapturedMayAddObserversAsItGoes) {
    struct AddsWhenItGoes {
        platform::NotificationCenter& center;
        Token token = makeToken();
        ~AddsWhenItGoes() {
            center.addObserver("saved", token, [](std::string_view) {});
        }
    };
    Token token = makeToken();
    auto captured = std::make_shared<AddsWhenItGoes>(AddsWhenItGoes{center});
    center.addObserver("saved", token, [captured](std::string_view) {});
    captured.reset();
    token.reset();
    center.post("saved");  // would wait for itself if a lock were held
    EXPECT_EQ(heard, "");
}

TEST_F(NotificationCenter, ManyThreadsMayAddAndPost) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            for (int round = 0; round < 200; ++round) {
                int calls = 0;
                const Token token = makeToken();
                const std::string name = std::to_string(std::hash<std::thread::id>{}(std::this_thread::get_id()));
                center.addObserver(name, token, [&calls](std::string_view) { ++calls; });
                center.post(name);
                EXPECT_EQ(calls, 1);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(NotificationCenter, TheProcessHasOne) {
    EXPECT_EQ(&platform::NotificationCenter::defaultCenter(), &platform::NotificationCenter::defaultCenter());
}

}  // namespace
