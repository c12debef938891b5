#include "numeric/elementtypes.h"

#include <cctype>

namespace
{
bool isLetter(char c)
{
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

/// Replaces every T that stands alone, as in "T Vector<T>::mean()", by a type's name.
std::string concreteSignature(const std::string& generic, const std::string& type)
{
  std::string concrete;
  for (std::size_t i = 0; i < generic.size(); ++i)
  {
    const bool startsWord = i == 0 || !isLetter(generic[i - 1]);
    const bool endsWord = i + 1 == generic.size() || !isLetter(generic[i + 1]);
    if (generic[i] == 'T' && startsWord && endsWord)
      concrete += type;
    else
      concrete += generic[i];
  }
  return concrete;
}
} // namespace

template <class T> TypeError notAvailable(const std::string& genericSignature)
{
  const std::string type = typeName<T>();
  return TypeError(concreteSignature(genericSignature, type), "Method not available for type '" + type + "'");
}

#define NUMERIC_NAME_TYPE(T)                                                                                           \
  template <> std::string typeName<T>()                                                                                \
  {                                                                                                                    \
    return #T;                                                                                                         \
  }                                                                                                                    \
  template TypeError notAvailable<T>(const std::string&);

NUMERIC_FOR_EACH_TYPE(NUMERIC_NAME_TYPE)
NUMERIC_NAME_TYPE(long)
