// Runs a list of operations on a section tree: an operation byte, then ids and texts.

#include "Input.h"

#include <Legacy/If/SectionMap.h>

#include <list>
#include <vector>

using namespace Legacy::If;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Input input(data, size);
    SectionMap map;
    SectionId section;
    InfoItemSectionId id(0xFFFFFFFF);
    std::string path;
    std::string name;
    while (!input.Empty()) {
        switch (input.Byte() % 9) {
        case 0:
            if (map.AddSection(input.Text(), section) == 0)
                Require(section.IsValid());
            break;
        case 1:
            if (SectionId const given(input.Text(), InfoItemSectionId(input.Word())); map.AddSection(given) == 0) {
                Require(map.FindSection(given.GetInfoItemSectionId(), section) == 0);
                Require(section.GetInfoItemSectionId() == given.GetInfoItemSectionId());
            }
            break;
        case 2:
            map.AddInfo(InfoItemSectionId(input.Word()), input.Text());
            break;
        case 3:
            path = input.Text();
            name = input.Text();
            if (map.AddInfo(path, name, id) == 0) {
                InfoItemSectionId found(0xFFFFFFFF);
                Require(map.FindInfo(path, name, found) == 0 && found == id);
            }
            break;
        case 4:
            map.FindInfo(InfoItemSectionId(input.Word()), path, name);
            break;
        case 5:
            if (map.FindSection(input.Text(), section) == 0)
                Require(section.IsValid());
            break;
        case 6: {
            std::vector<unsigned int> infos;
            map.GetInfos(InfoItemSectionId(input.Word()), infos);
            break;
        }
        case 7: {
            std::vector<SectionId> sections;
            map.GetTopLevelSections(sections);
            map.GetSubsections(InfoItemSectionId(input.Word()), sections);
            break;
        }
        default: {
            std::list<SectionId> leaves;
            map.GetLeafSections(leaves);
            for (SectionId const& leaf : leaves)
                Require(leaf.IsValid());
        }
        }
    }
    return 0;
}
