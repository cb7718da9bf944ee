// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <memory>

namespace Talvik {

/// Stands for the host's weak reference to an object of the model (the host's spelling).
template<typename T>
class weak_refrence
{
public:
    weak_refrence() = default;
    weak_refrence(const std::shared_ptr<T> &object)
        : m_object(object)
    {}

    /// The object; null if it was deleted or never set.
    std::shared_ptr<T> lock() const { return m_object.lock(); }
    bool expired() const { return m_object.expired(); }

private:
    std::weak_ptr<T> m_object;
};

} // namespace Talvik
