#include <Legacy/If/Bool.h>
#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/Result.h>
#include <Orlek/Localization.h>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

// The threading library's locks, counted on the thread that runs the test.

namespace {

thread_local unsigned int t_locks = 0;

template<typename Lock>
int Counted(char const* name, Lock* lock)
{
    ++t_locks;
    return reinterpret_cast<int (*)(Lock*)>(dlsym(RTLD_NEXT, name))(lock);
}

} // namespace

extern "C" int pthread_mutex_lock(pthread_mutex_t* lock) noexcept { return Counted("pthread_mutex_lock", lock); }
extern "C" int pthread_rwlock_rdlock(pthread_rwlock_t* lock) noexcept { return Counted("pthread_rwlock_rdlock", lock); }
extern "C" int pthread_rwlock_wrlock(pthread_rwlock_t* lock) noexcept { return Counted("pthread_rwlock_wrlock", lock); }

namespace Legacy::If {
namespace {

TEST(Locks, OnlyTheLoggerTakesOne)
{
    boost::intrusive_ptr<NumericInfo<U8Traits>> const info(new NumericInfo<U8Traits>(1, "load", Permission_t{}));
    info->SetMax(100);
    boost::intrusive_ptr<ItemBase> const item(NumericItem<U8Traits>::Create(1, 101));
    Result result(1);
    auto const work = [&] {
        ItemBase::SerialStruct_t record;
        EXPECT_EQ(item->Serialize(&record), 0);
        result.AddResultElem(item->Validate(info));
        boost::intrusive_ptr<ItemBase> const copy(BoolItem::Create(1, false));
        EXPECT_EQ(copy->AssignValue(item, nullptr), 0);
        InfoItemDirectory directory;
        SectionId section;
        EXPECT_EQ(directory.AddSection("network/eth0", section), 0);
        std::string const text = Orlek::Localization::GetString("TypesSystemNumericValidationMax", "de_AT");
        EXPECT_EQ(text, "{1}: Der Wert liegt über dem Maximum von {2}.");
    };
    work(); // whatever is made at first use
    t_locks = 0;
    work();
    EXPECT_EQ(t_locks, 0U);
    Orlek::Localization::SetDefaultLanguage("de");
    EXPECT_GT(t_locks, 0U); // so they are counted
}

} // namespace
} // namespace Legacy::If
