// Applies a delta made from the input to a directory: sections, text schemas and text values in any order and number.

#include "Input.h"

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/If/String.h>

using namespace Legacy::If;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    bool const infos = input.Byte() % 2 != 0;
    bool const items = input.Byte() % 2 != 0;
    InfoItemDirectory directory;
    SectionId section;
    directory.AddSection("a/b", section);

    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    while (!input.Empty()) {
        switch (input.Byte() % 3) {
        case 0: {
            std::string const path = input.Text();
            delta->AddSection(SectionId(path, InfoItemSectionId(input.Word())));
            break;
        }
        case 1: {
            unsigned int const id = input.Word();
            boost::intrusive_ptr<InfoBase> const info(new StringInfo(id, input.Text(), Permission_t{}));
            delta->AddInfo(new InfoHolder(info));
            break;
        }
        default: {
            unsigned int const id = input.Word();
            boost::intrusive_ptr<ItemBase> const item(StringItem::Create(id, input.Text()));
            delta->AddItem(new ItemHolder(item));
        }
        }
    }
    if (directory.UpdateFromDelta(delta, infos, items) == 0) {
        // A second time nothing is new, and all of it passes again.
        Require(directory.UpdateFromDelta(delta, infos, items) == 0);
        for (auto const& [id, holder] : delta->GetItemHolderPtrMap_addMod())
            Require(!items || directory.FindItem(id) == holder);
    }
    return 0;
}
