// The kernel's messages about a radio, one after another; they quote frames that anyone can send.
#include "fuzz_target.h"
#include "radio/radio_events.h"

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    radio::RadioEventReader reader([](auto) { return QString(); });
    radio::RadioEventReader::TimePoint now {};
    while (input.remaining_bytes() > 0) {
        now += std::chrono::seconds(input.ConsumeIntegralInRange(0, 3));
        const int command = input.PickValueInArray(radio::kRadioCommands);
        const auto attributes = takeBytes(input, 512);
        const auto event = reader.read({command, asBytes(attributes)}, now);
        if (!event)
            continue;
        require(!event->bssid || event->bssid->size() == 17, "an address has six bytes");
        require(!event->code || (*event->code >= 0 && *event->code <= 0xffff), "two bytes");
        require(event->at == now, "an event is told when it comes");
    }
}
