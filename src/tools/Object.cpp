#include "tools/Object.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

// Never destroyed: descriptors of other modules leave it while the process ends.
struct Registry {
    std::mutex lock;
    std::unordered_map<std::string, std::vector<const CXRuntimeClass*>> classes;
};

Registry& GetRegistry()
{
    static Registry* const registry = new Registry;
    return *registry;
}

[[maybe_unused]] const CXRuntimeClass* const s_registeredCXObject = CXObject::GetThisRuntimeClassDescriptor();

}

CXRuntimeClass::CXRuntimeClass(const char* name, const CXRuntimeClass* base, Creator create) : m_name(name), m_base(base), m_create(create)
{
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    registry.classes[name].push_back(this);
}

CXRuntimeClass::~CXRuntimeClass()
{
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    const auto found = registry.classes.find(m_name);
    if (found == registry.classes.end())
        return;
    std::erase(found->second, this);
    if (found->second.empty())
        registry.classes.erase(found);
}

bool CXRuntimeClass::IsDerivedFrom(const CXRuntimeClass* base) const
{
    const CXRuntimeClass* type = this;
    while (type && type != base)
        type = type->m_base;
    return type != nullptr;
}

const CXRuntimeClass* CXRuntimeClass::Find(const char* name)
{
    if (!name)
        return nullptr;
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    const auto found = registry.classes.find(name);
    return found == registry.classes.end() ? nullptr : found->second.front();    // a plug-in cannot replace a class
}

CXObject::~CXObject() = default;

const CXRuntimeClass* CXObject::GetThisRuntimeClassDescriptor()
{
    static const CXRuntimeClass type("CXObject", nullptr, &CXObject::CreateObject);
    return &type;
}

const CXRuntimeClass* CXObject::GetRuntimeClassDescriptor() const { return GetThisRuntimeClassDescriptor(); }

CXObject* CXObject::CreateObject() { return new CXObject; }

void CXObject::Serialize(CXArchive&) {}

bool CXObject::IsKindOf(const CXRuntimeClass* type) const { return type && GetRuntimeClassDescriptor()->IsDerivedFrom(type); }

CInstanciatedObject::~CInstanciatedObject() = default;

void CInstanciatedObject::AddRef() const
{
    if (this)
        m_references++;
}

bool CInstanciatedObject::Delete() const
{
    if (!this || --m_references > 0)
        return false;
    delete this;
    return true;
}

void DeleteMe(const CInstanciatedObject* object) { object->Delete(); }
