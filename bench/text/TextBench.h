#pragma once

namespace bench
{

void RegisterBase64();
void RegisterEncoding();
void RegisterMd5();
void RegisterStrings();
void RegisterVersionCompare();

} // namespace bench
