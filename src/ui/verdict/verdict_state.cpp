#include "ui/verdict/verdict_state.h"

#include "base/visible_text.h"
#include "services/services.h"
#include "verdict/verdict_service.h"

#include <array>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

Mark markOf(const verdict::Verdict& verdict)
{
    if (verdict.cause == verdict::Cause::Unsure)
        return mark::Unknown;
    constexpr std::array kMarks = {mark::Fine, mark::Notice, mark::Poor, mark::Broken};
    return kMarks.at(size_t(verdict.severity));
}

} // namespace

QString symbolOf(Mark mark)
{
    constexpr std::array kSymbols = {"ellipsis.circle"_L1, "checkmark.circle.fill"_L1,
        "info.square.fill"_L1, "exclamationmark.triangle.fill"_L1, "xmark.octagon.fill"_L1};
    return kSymbols.at(size_t(mark));
}

VerdictState::VerdictState(const services::Services& services)
{
    const auto* service = services.verdictService.get();
    connect(service, &verdict::VerdictService::verdictChanged, this,
        [this, service] { show(service->verdict()); });
    show(service->verdict());
}

void VerdictState::show(const verdict::Verdict& verdict)
{
    const auto before = std::tuple(m_mark, m_sentence, m_advice);
    m_mark = markOf(verdict);
    // There is none in the first moments.
    m_sentence = verdict.sentence.isEmpty() ? u"Looking at the connection…"_s
                                            : base::withVisibleControls(verdict.sentence);
    m_advice = base::withVisibleControls(verdict.advice);
    if (before != std::tuple(m_mark, m_sentence, m_advice))
        Q_EMIT verdictChanged();
}

} // namespace netvane::ui
