#include <Base/GCString.h>

#include <cstring>
#include <istream>
#include <ostream>

namespace GenICam {

gcstring& gcstring::append(size_t count, char ch) {
    m_text.append(count, ch);
    return *this;
}

gcstring& gcstring::operator+=(const gcstring& other) {
    m_text += other.m_text;
    return *this;
}

gcstring& gcstring::operator+=(const char* text) {
    if (text)
        m_text += text;
    return *this;
}

gcstring& gcstring::operator+=(char ch) {
    m_text += ch;
    return *this;
}

size_t gcstring::find(const char* text, size_t pos) const {
    return m_text.find(text ? text : "", pos);
}

size_t gcstring::rfind(const gcstring& text, size_t pos) const {
    return m_text.rfind(text.m_text, pos);
}

size_t gcstring::find_first_of(const gcstring& chars, size_t pos) const {
    return m_text.find_first_of(chars.m_text, pos);
}

size_t gcstring::find_first_not_of(const gcstring& chars, size_t pos) const {
    return m_text.find_first_not_of(chars.m_text, pos);
}

size_t gcstring::find_last_of(const gcstring& chars, size_t pos) const {
    return m_text.find_last_of(chars.m_text, pos);
}

size_t gcstring::find_last_not_of(const gcstring& chars, size_t pos) const {
    return m_text.find_last_not_of(chars.m_text, pos);
}

gcstring gcstring::substr(size_t pos, size_t count) const {
    return gcstring(m_text.substr(pos, count));
}

gcstring operator+(const gcstring& left, const gcstring& right) {
    gcstring result(left);
    result += right;
    return result;
}

gcstring operator+(const gcstring& left, const char* right) {
    gcstring result(left);
    result += right;
    return result;
}

gcstring operator+(const char* left, const gcstring& right) {
    gcstring result(left);
    result += right;
    return result;
}

gcstring operator+(const gcstring& left, char right) {
    gcstring result(left);
    result += right;
    return result;
}

std::ostream& operator<<(std::ostream& out, const gcstring& text) {
    return out << text.str();
}

std::istream& operator>>(std::istream& in, gcstring& text) {
    std::string word;
    in >> word;
    text = gcstring(std::move(word));
    return in;
}

} // namespace GenICam
