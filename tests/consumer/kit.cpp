// A program that uses the companion library.
#include <Legacy/If/Bool.h>
#include <Legacy/IfKit/Records.h>

#include <iostream>

using namespace Legacy;

int main()
{
    std::vector<unsigned char> bytes;
    IfKit::AppendRecord(*boost::intrusive_ptr<If::ItemBase>(If::BoolItem::Create(7, true)), bytes);
    for (IfKit::RecordReader reader(bytes); auto const record = reader.Next();)
        std::cout << record->id << '\n';
}
