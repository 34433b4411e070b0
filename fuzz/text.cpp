// Reads a value of each family from text: two tag bytes choose the family, the rest is the text.

#include "Input.h"

#include <Legacy/If/ItemBase.h>

#include <sstream>
#include <stdexcept>

using namespace Legacy::If;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    ItemBase::ConstSerialStruct_t record;
    record.type = input.Byte();
    record.numericType = input.Byte();
    boost::intrusive_ptr<ItemBase> item;
    ItemBase::Deserialize(&record, item); // the empty payload fits few families; the new value is what is wanted here
    if (!item)
        return 0;

    std::istringstream in(input.Rest());
    std::ostringstream out;
    try {
        if (item->SetValFromStream(in, out, nullptr)) {
            // What a value prints, it can be asked to read; whether it can is the family's affair.
            std::istringstream again(item->GetValAsString());
            item->SetValFromStream(again, out, nullptr);
        }
    } catch (std::length_error const&) {
        // A list was asked to hold more than any list can, and says so.
    }
    return 0;
}
