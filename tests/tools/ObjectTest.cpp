#include "tools/Object.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "tools/Exception.h"

class CTestShared : public CXObject, public CInstanciatedObject {
    ZEL_DECLARE_CREATABLE(CTestShared)
public:
    explicit CTestShared(bool* gone = nullptr) : m_gone(gone) {}
    ~CTestShared() override
    {
        if (m_gone)
            *m_gone = true;
    }

private:
    bool* m_gone;
};
ZEL_IMPLEMENT_CREATABLE(CTestShared, CXObject)

class CTestAbstract : public CTestShared {
    ZEL_DECLARE_DYNAMIC(CTestAbstract)
};
ZEL_IMPLEMENT_DYNAMIC(CTestAbstract, CTestShared)

TEST(RuntimeClass, IsFoundByNameWhileItsModuleIsThere)
{
    EXPECT_EQ(CXRuntimeClass::Find("CTestShared"), CTestShared::GetThisRuntimeClassDescriptor());
    EXPECT_EQ(CXRuntimeClass::Find("CTestSharedX"), nullptr);
    EXPECT_EQ(CXRuntimeClass::Find(nullptr), nullptr);
    EXPECT_EQ(CTestAbstract::GetThisRuntimeClassDescriptor()->CreateObject(), nullptr);
    const std::unique_ptr<CXObject> object(CXRuntimeClass::Find("CTestShared")->CreateObject());
    EXPECT_NE(XDynamicCast<CTestShared>(object.get()), nullptr);
    EXPECT_EQ(XDynamicCast<CTestAbstract>(object.get()), nullptr);
    EXPECT_TRUE(CTestAbstract().IsKindOf(CTestShared::GetThisRuntimeClassDescriptor()));

    {
        // A module that brings a class of a name that is taken, and one of its own.
        const CXRuntimeClass taken("CTestShared", CXObject::GetThisRuntimeClassDescriptor(), nullptr);
        const CXRuntimeClass own("CTestOfAModule", &taken, nullptr);
        EXPECT_EQ(CXRuntimeClass::Find("CTestShared"), CTestShared::GetThisRuntimeClassDescriptor());
        EXPECT_EQ(CXRuntimeClass::Find("CTestOfAModule"), &own);
        EXPECT_TRUE(own.IsDerivedFrom(CXObject::GetThisRuntimeClassDescriptor()));
        EXPECT_FALSE(own.IsDerivedFrom(CTestShared::GetThisRuntimeClassDescriptor()));
    }
    EXPECT_EQ(CXRuntimeClass::Find("CTestOfAModule"), nullptr);
    EXPECT_NE(CXRuntimeClass::Find("CTestShared"), nullptr);
}

TEST(InstanciatedObject, DiesWithItsLastOwner)
{
    bool gone = false;
    auto* const object = new CTestShared(&gone);
    object->AddRef();
    EXPECT_FALSE(object->Delete());
    const CTestShared copy(*object);    // a copy has its own owners
    EXPECT_EQ(copy.GetRefCount(), 1);
    EXPECT_FALSE(gone);
    EXPECT_TRUE(object->Delete());
    EXPECT_TRUE(gone);
    DeleteMe(nullptr);
    DeleteMe(static_cast<CTestShared*>(nullptr));    // its base lies behind another: still null
}

TEST(Exception, StaysAliveWhileItIsHandled)
{
    try {
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE, L"first");
    } catch (CXArchiveException* first) {
        try {
            XThrowInvalidIndex();
        } catch (CXException* second) {
            EXPECT_EQ(XGetThreadException(), second);
            XDeleteThreadException(second);
        }
        EXPECT_EQ(XGetThreadException(), first);
        EXPECT_EQ(first->GetText(), L"first");
        try {
            throw XSetThreadException(first);    // passed on: registered once all the same
        } catch (CXException*) {
        }
    }

    // A destructor that catches on the way to a handler must not take the handler's exception away.
    struct Cleaner {
        ~Cleaner()
        {
            try {
                XThrowInvalidIndex();
            } catch (CXException*) {
                XDeleteThreadException();
            }
        }
    };
    try {
        const Cleaner cleaner;
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT, L"in flight");
    } catch (CXArchiveException* exception) {
        EXPECT_EQ(exception->GetType(), CXArchiveException::ARCHIVE_BAD_COUNT);
        EXPECT_EQ(exception->GetText(), L"in flight");
    }
    std::thread([] {
        EXPECT_EQ(XGetThreadException(), nullptr);
        XSetThreadException(new CXInvalidArgException);    // goes with the thread
    }).join();
    XDeleteThreadException();
    EXPECT_EQ(XGetThreadException(), nullptr);
}
