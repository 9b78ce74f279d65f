#pragma once

// The class library's containers, over the standard ones, in the heap of the process.

#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "support/errors.h"
#include "support/process_heap.h"

/// An array that checks every index: one outside it raises CInvalidArgException.
template<class T, class Argument = const T&>
class CArray {
  public:
    [[nodiscard]] std::size_t GetSize() const noexcept { return m_items.size(); }
    [[nodiscard]] bool IsEmpty() const noexcept { return m_items.empty(); }
    void SetSize(std::size_t size) { m_items.resize(size); }
    void Add(Argument item) { m_items.push_back(item); }
    void Add(T&& item) { m_items.push_back(std::move(item)); }
    void RemoveAll() noexcept { m_items.clear(); }

    [[nodiscard]] T& operator[](std::size_t index) { return m_items[Checked(index)]; }
    [[nodiscard]] const T& operator[](std::size_t index) const { return m_items[Checked(index)]; }

    [[nodiscard]] auto begin() noexcept { return m_items.begin(); }
    [[nodiscard]] auto end() noexcept { return m_items.end(); }
    [[nodiscard]] auto begin() const noexcept { return m_items.begin(); }
    [[nodiscard]] auto end() const noexcept { return m_items.end(); }

  private:
    [[nodiscard]] std::size_t Checked(std::size_t index) const {
        if (index >= m_items.size()) {
            throw CInvalidArgException();
        }
        return index;
    }

    std::vector<T, ProcessHeapAllocator<T>> m_items;
};

/// A hash table from keys to values.
template<class Key, class Value>
using CMap = std::unordered_map<Key, Value, std::hash<Key>, std::equal_to<Key>,
                                ProcessHeapAllocator<std::pair<const Key, Value>>>;
