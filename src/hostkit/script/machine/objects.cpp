#include "hostkit/script/machine/objects.h"

#include <algorithm>
#include <utility>

#include "hostkit/script/machine/heap.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

namespace {

// Outlives every heap: buffers are made in the middle of building their object.
FreeLists& bufferLists() {
  static FreeLists lists;
  return lists;
}

}  // namespace

void* StringObject::Buffer::operator new(std::size_t size) { return bufferLists().take(size); }
void StringObject::Buffer::operator delete(void* memory, std::size_t size) { bufferLists().giveBack(memory, size); }

StringObject::StringObject(std::u16string_view value) : Object(kKind), buffer_(new Buffer), length_(value.size()) {
  buffer_->text = value;
}

StringObject::StringObject(const StringObject* other)
    : Object(kKind), buffer_(other->buffer_), length_(other->length_) {}

// Within the capacity nothing moves: views of the texts that share the buffer stay valid.
StringObject::StringObject(const StringObject* head, std::u16string_view tail)
    : Object(kKind), buffer_(head->buffer_), length_(head->length_) {
  const std::size_t whole = length_ + tail.size();
  if (length_ != buffer_->text.size() || whole > buffer_->text.capacity()) makeOwn(whole + whole / 2);
  buffer_->text += tail;
  length_ = whole;
}

std::size_t StringObject::footprint() const {
  const std::size_t shares = std::max(std::size_t{1}, std::size_t{buffer_->use_count()});
  return sizeof(StringObject) + (sizeof(Buffer) + buffer_->text.capacity() * 2) / shares;
}

void StringObject::makeOwn(std::size_t capacity) {
  boost::intrusive_ptr<Buffer> own(new Buffer);
  own->text.reserve(capacity);
  own->text = text();
  buffer_ = std::move(own);
}

void StringObject::setCharacter(std::size_t index, char16_t character) {
  if (buffer_->use_count() > 1) makeOwn(length_);
  buffer_->text[index] = character;
}

void StringObject::append(std::u16string_view more) {
  if (buffer_->use_count() > 1) makeOwn(length_ + more.size());
  buffer_->text.resize(length_);
  buffer_->text += more;
  length_ = buffer_->text.size();
}

std::u16string DictionaryObject::indexOf(const Value& key) {
  if (const auto* text = as<StringObject>(key)) return std::u16string(text->text());
  if (const auto* name = as<NameObject>(key)) return name->folded;
  return widen(std::to_string(key.tag == Tag::integer ? key.i : key.l));
}

Value* DictionaryObject::find(const Value& key) {
  const auto found = places_.find(indexOf(key));
  return found == places_.end() ? nullptr : &entries[found->second].second;
}

void DictionaryObject::set(const Value& key, const Value& value) {
  const auto [found, isNew] = places_.try_emplace(indexOf(key), entries.size());
  if (isNew) {
    entries.emplace_back(key, value);
  } else {
    entries[found->second].second = value;
  }
}

bool DictionaryObject::remove(const Value& key) {
  const auto found = places_.find(indexOf(key));
  if (found == places_.end()) return false;
  const std::size_t gone = found->second;
  places_.erase(found);
  entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(gone));
  for (auto& [index, place] : places_)
    if (place > gone) --place;
  return true;
}

}  // namespace hostkit::script
