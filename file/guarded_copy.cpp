#include "file/guarded_copy.h"

#include <qxcore/platform.h>

#include <cstdint>

#if defined(_MSC_VER)

namespace {

// Not memcpy: the compiler must see the access inside the guarded block.
template <class T>
int GuardedAssign(void* to, const void* from) {
    __try {
        *static_cast<T __unaligned*>(to) = *static_cast<const T __unaligned*>(from);
        return 1;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return 0;
    }
}

}  // namespace

int qx_guarded_copy_1(void* to, const void* from) {
    return GuardedAssign<uint8_t>(to, from);
}
int qx_guarded_copy_2(void* to, const void* from) {
    return GuardedAssign<uint16_t>(to, from);
}
int qx_guarded_copy_4(void* to, const void* from) {
    return GuardedAssign<uint32_t>(to, from);
}
int qx_guarded_copy_8(void* to, const void* from) {
    return GuardedAssign<uint64_t>(to, from);
}

int qx_guarded_copy_block(void* to, const void* from, size_t count) {
    __try {
        __movsb(static_cast<unsigned char*>(to), static_cast<const unsigned char*>(from), count);
        return 1;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return 0;
    }
}

ptrdiff_t qx_guarded_copy_line(char* to, const char* from, size_t count) {
    volatile ptrdiff_t copied = 0;
    __try {
        while (size_t(copied) < count) {
            char byte = to[copied] = from[copied];
            ++copied;
            if (byte == 10) break;
        }
        return copied;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return ~copied;
    }
}

#else

// The compiler has no guarded blocks, but its functions and the platform share one unwind table, so the copies are
// written in assembler and name their handler there. The data behind the handler is the address where the function
// goes on after a fault; the stack is then what it was at the faulting instruction.
extern "C" EXCEPTION_DISPOSITION qx_guarded_copy_fault(EXCEPTION_RECORD* record, void*, CONTEXT* context,
                                                       DISPATCHER_CONTEXT* dispatcher) {
    if (record->ExceptionFlags & EXCEPTION_NONCONTINUABLE) return ExceptionContinueSearch;
    context->Rip = dispatcher->ImageBase + *static_cast<const uint32_t*>(dispatcher->HandlerData);
    return ExceptionContinueExecution;
}

// clang-format off
#define QX_GUARDED_BEGIN(name)                  \
    ".text\n"                                   \
    ".p2align 4\n"                              \
    ".globl " name "\n"                         \
    ".def " name "\n.scl 2\n.type 32\n.endef\n" \
    ".seh_proc " name "\n"                      \
    name ":\n"

#define QX_GUARDED_END(resume)                      \
    ".seh_handler qx_guarded_copy_fault, @except\n" \
    ".seh_handlerdata\n"                            \
    ".rva " resume "\n"                             \
    ".text\n"                                       \
    ".seh_endproc\n"

#define QX_GUARDED_ASSIGN(bytes, load, part)   \
    QX_GUARDED_BEGIN("qx_guarded_copy_" bytes) \
    ".seh_endprologue\n"                       \
    load "\n"                                  \
    "mov %" part ", (%rcx)\n"                  \
    "movl $1, %eax\n"                          \
    "ret\n"                                    \
    "0: xorl %eax, %eax\n"                     \
    "ret\n"                                    \
    QX_GUARDED_END("0b")

asm(QX_GUARDED_ASSIGN("1", "movzbl (%rdx), %eax", "al")
    QX_GUARDED_ASSIGN("2", "movzwl (%rdx), %eax", "ax")
    QX_GUARDED_ASSIGN("4", "movl (%rdx), %eax", "eax")
    QX_GUARDED_ASSIGN("8", "movq (%rdx), %rax", "rax")
    QX_GUARDED_BEGIN("qx_guarded_copy_block")
    "pushq %rsi\n"
    ".seh_pushreg %rsi\n"
    "pushq %rdi\n"
    ".seh_pushreg %rdi\n"
    ".seh_endprologue\n"
    "movq %rcx, %rdi\n"
    "movq %rdx, %rsi\n"
    "movq %r8, %rcx\n"
    "rep movsb\n"
    "movl $1, %eax\n"
    "1: popq %rdi\n"
    "popq %rsi\n"
    "ret\n"
    "0: xorl %eax, %eax\n"
    "jmp 1b\n"
    QX_GUARDED_END("0b")
    QX_GUARDED_BEGIN("qx_guarded_copy_line")
    ".seh_endprologue\n"
    "xorl %eax, %eax\n"
    "1: cmpq %r8, %rax\n"
    "je 2f\n"
    "movzbl (%rdx,%rax), %r9d\n"
    "movb %r9b, (%rcx,%rax)\n"
    "incq %rax\n"
    "cmpb $10, %r9b\n"
    "jne 1b\n"
    "2: ret\n"
    "0: notq %rax\n"
    "ret\n"
    QX_GUARDED_END("0b"));
// clang-format on

#endif
