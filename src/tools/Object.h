#pragma once

#include "tools/Api.h"

class CXArchive;
class CXObject;

/// Names a class of the system at run time: streams write the name, readers create an empty object from it.
///
/// One descriptor stands for each class and lives as long as the module that defines it. Descriptors enter the
/// process-wide registry when they are built and leave it when their module is unloaded.
class ZEL_API CXRuntimeClass {
public:
    using Creator = CXObject* (*)();

    CXRuntimeClass(const char* name, const CXRuntimeClass* base, Creator create);
    ~CXRuntimeClass();
    CXRuntimeClass(const CXRuntimeClass&) = delete;
    CXRuntimeClass& operator=(const CXRuntimeClass&) = delete;

    const char* GetName() const { return m_name; }
    const CXRuntimeClass* GetBase() const { return m_base; }
    /// True for the class itself and for each class that derives from it.
    bool IsDerivedFrom(const CXRuntimeClass* base) const;
    /// A new empty object of the class; null for an abstract class.
    CXObject* CreateObject() const { return m_create ? m_create() : nullptr; }

    /// The registered class of that name, or null.
    static const CXRuntimeClass* Find(const char* name);

private:
    const char* m_name;
    const CXRuntimeClass* m_base;
    Creator m_create;
};

/// Root of every class that a stream can name.
class ZEL_API CXObject {
public:
    virtual ~CXObject();
    virtual const CXRuntimeClass* GetRuntimeClassDescriptor() const;
    /// Moves the object's fields through the archive, in the archive's direction. Moves nothing here.
    virtual void Serialize(CXArchive& ar);

    bool IsKindOf(const CXRuntimeClass* type) const;
    static const CXRuntimeClass* GetThisRuntimeClassDescriptor();
    static CXObject* CreateObject();

protected:
    CXObject() = default;
    CXObject(const CXObject&) = default;
    CXObject& operator=(const CXObject&) = default;
};

/// Reference counting for what several owners share. A new object has one reference.
///
/// Never deleted directly: the last Delete destroys it. The count is a plain value (one thread at a time).
class ZEL_API CInstanciatedObject {
public:
    /// One more owner. A null `this` is ignored; a null pointer to a class that has this base behind another one does not
    /// arrive here as null, so test those first (DeleteMe does).
    void AddRef() const;
    /// Drops one reference and destroys the object at zero; true when it was destroyed. False for a null `this`.
    bool Delete() const;
    /// Number of owners.
    int GetRefCount() const { return m_references; }

protected:
    CInstanciatedObject() = default;
    CInstanciatedObject(const CInstanciatedObject&) {}    // a copy has its own owners
    CInstanciatedObject& operator=(const CInstanciatedObject&) { return *this; }
    virtual ~CInstanciatedObject();

private:
    mutable int m_references = 1;
};

/// Drops one reference, destroys at zero, accepts null.
ZEL_API void DeleteMe(const CInstanciatedObject* object);

/// `object` as a T when its run-time class is T or derives from it, else null. Accepts null.
///
/// The C-style cast is deliberate: point lists keep their element-array base out of reach, and dynamic_cast
/// cannot pass through a base that is not public.
template <class T> T* XDynamicCast(CXObject* object)
{
    return object && object->IsKindOf(T::GetThisRuntimeClassDescriptor()) ? (T*)object : nullptr;
}

/// In a class: it can be named in a stream. Put it first in the class body.
#define ZEL_DECLARE_DYNAMIC(Class)                                    \
public:                                                               \
    const CXRuntimeClass* GetRuntimeClassDescriptor() const override; \
    static const CXRuntimeClass* GetThisRuntimeClassDescriptor();

/// The same for a class that a stream can also create.
#define ZEL_DECLARE_CREATABLE(Class) \
    ZEL_DECLARE_DYNAMIC(Class)       \
    static CXObject* CreateObject();

#define ZEL_IMPLEMENT_RUNTIME_CLASS_(Class, Base, Create)                                                      \
    const CXRuntimeClass* Class::GetThisRuntimeClassDescriptor()                                               \
    {                                                                                                          \
        static const CXRuntimeClass type(#Class, Base::GetThisRuntimeClassDescriptor(), Create);               \
        return &type;                                                                                          \
    }                                                                                                          \
    const CXRuntimeClass* Class::GetRuntimeClassDescriptor() const { return GetThisRuntimeClassDescriptor(); } \
    [[maybe_unused]] static const CXRuntimeClass* const s_registered##Class = Class::GetThisRuntimeClassDescriptor();

/// In one .cpp, for ZEL_DECLARE_DYNAMIC.
#define ZEL_IMPLEMENT_DYNAMIC(Class, Base) ZEL_IMPLEMENT_RUNTIME_CLASS_(Class, Base, nullptr)

/// In one .cpp, for ZEL_DECLARE_CREATABLE; the class has a default constructor.
#define ZEL_IMPLEMENT_CREATABLE(Class, Base)                         \
    CXObject* Class::CreateObject() { return (CXObject*)new Class; } \
    ZEL_IMPLEMENT_RUNTIME_CLASS_(Class, Base, &Class::CreateObject)
