#pragma once

#include "base/clock.h"
#include "platform/connection.h"
#include "platform/hop_probe.h"
#include "verdict/evidence.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace netvane::verdict {

/// The questions that only the verdict asks, besides those of the services. They are sent together
/// once a round, and what has no answer by the end of the next round is lost. While packets may be
/// lost, a few more follow half a round later, so that it is clear sooner. Main thread.
class ExtraProbes {
public:
    /// All outlive this. What comes back is written to `evidence`; `note` is called after a loss.
    ExtraProbes(base::Clock& clock, platform::ConnectionFactory& connections,
        platform::HopProbeFactory& hops, Evidence& evidence, std::function<void()> note);

    /// Begins the next round. Main thread.
    void nextRound();
    /// What is under way counts as nothing: the network is another one.
    void forget();

private:
    struct Question {
        Outcomes Evidence::*outcomes = nullptr;
        TimePoint askedAt;
        bool isDatagram = false; ///< which nobody sends again
        bool isAnswered = false;
        std::unique_ptr<platform::Connection> connection {};
    };
    using Start = std::function<std::unique_ptr<platform::Connection>(platform::ConnectionHandler)>;

    void closeOldQuestions();
    void add(Outcomes Evidence::*outcomes, const Outcome& outcome);
    void ask(Outcomes Evidence::*outcomes, const Start& start);
    void askHops();
    void askFirstHop();
    void askSecondHop();
    void askBetween();
    bool sparesRouter() const;
    bool isOnlyIPv6() const;
    void askOthers();
    void sendFullPacket();
    bool wantsFullPacket() const;

    base::Clock& m_clock;
    platform::ConnectionFactory& m_connections;
    platform::HopProbeFactory& m_hops;
    Evidence& m_evidence;
    const std::function<void()> m_note;
    std::vector<std::shared_ptr<Question>> m_questions; ///< of the last seconds
    QString m_pathKey; ///< target and interface of the two paths
    std::unique_ptr<platform::HopPath> m_firstPath;
    std::unique_ptr<platform::HopPath> m_secondPath;
    std::unique_ptr<platform::Connection> m_fullPacket;
    std::unique_ptr<base::Timer> m_between;
    const std::unique_ptr<QObject> m_owner = std::make_unique<QObject>(); ///< of delayed work
    int m_lostFullPackets = 0;
    int m_fullPacketWait = 1; ///< rounds until the next one
    int m_round = 0;
};

} // namespace netvane::verdict
