#include "platform/background_work.h"
#include "platform/linux/scan_path.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::platform {
namespace {

Failure refusal(const Failure& failure)
{
    if (failure.kind == FailureKind::NotAllowed)
        return {failure.kind,
            u"Scanning takes NetworkManager, iwd or wpa_supplicant, or more rights"_s};
    return {FailureKind::Other, u"The kernel refused to scan: "_s + failure.text};
}

class KernelScanPath : public ScanPath {
public:
    KernelScanPath(std::shared_ptr<ScanKernel> kernel, WorkQueue& queue)
        : m_kernel(std::move(kernel))
        , m_queue(queue)
    {
    }

    void requestScan(const ScanInterface& interface) override
    {
        runInBackground(
            m_queue, this, [kernel = m_kernel, interface] { return kernel->trigger(interface); },
            [this](const Result<std::monostate>& answer) {
                if (!answer)
                    Q_EMIT failed(refusal(answer.failure()));
            });
    }

private:
    const std::shared_ptr<ScanKernel> m_kernel;
    WorkQueue& m_queue;
};

} // namespace

std::unique_ptr<ScanPath> makeKernelScanPath(std::shared_ptr<ScanKernel> kernel, WorkQueue& queue)
{
    return std::make_unique<KernelScanPath>(std::move(kernel), queue);
}

} // namespace netvane::platform
