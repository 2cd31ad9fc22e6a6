#pragma once
// The bus name of varnel-helper, the one program that does what needs root.
inline constexpr const char *kSystemHelperService = "org.varnel.Helper";
// True when varnel-helper can be started on the system bus.
bool systemHelperAvailable();
