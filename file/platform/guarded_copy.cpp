#include "file/platform/guarded_copy.h"

#include <qxcore/export.h>
#include <qxcore/platform.h>

#include <cstdint>

#if defined(_MSC_VER)

#include <intrin.h>

namespace {

// Each access stands in a function that is not inlined: a compiler may take a plain one inside a
// guarded block for one that cannot fault, and drop the guard. A call it keeps.
template <class T>
QXCORE_NOINLINE void Assign(void* to, const void* from) {
    *static_cast<T __unaligned*>(to) = *static_cast<const T __unaligned*>(from);
}

QXCORE_NOINLINE void CopyBlock(void* to, const void* from, size_t count) {
    __movsb(static_cast<unsigned char*>(to), static_cast<const unsigned char*>(from), count);
}

// `copied` counts as it goes, so that it tells the truth behind a fault.
QXCORE_NOINLINE void CopyLine(char* to, const char* from, size_t count,
                              volatile ptrdiff_t& copied) {
    constexpr char kLineFeed = 10;
    while (size_t(copied) < count) {
        char byte = to[copied] = from[copied];
        copied = copied + 1;
        if (byte == kLineFeed) return;
    }
}

template <class T>
int GuardedAssign(void* to, const void* from) {
    __try {
        Assign<T>(to, from);
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
        CopyBlock(to, from, count);
        return 1;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return 0;
    }
}

ptrdiff_t qx_guarded_copy_line(char* to, const char* from, size_t count) {
    volatile ptrdiff_t copied = 0;
    __try {
        CopyLine(to, from, count, copied);
        return copied;
    } __except (EXCEPTION_EXECUTE_HANDLER) {
        return ~copied;
    }
}

#else

// The compiler has no guarded blocks, but its functions and the platform share one unwind table, so
// the copies are written in assembler and name their handler there. The data behind the handler is
// the address where the function goes on after a fault; the stack is then what it was at the
// faulting instruction.
extern "C" EXCEPTION_DISPOSITION qx_guarded_copy_fault(EXCEPTION_RECORD* record, void*,
                                                       CONTEXT* context,
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
    // Sixteen bytes at a time as long as there are so many. %r11d tells which copy a fault interrupts: behind one of
    // sixteen the single bytes go on, up to the one at fault.
    QX_GUARDED_BEGIN("qx_guarded_copy_line")
    ".seh_endprologue\n"
    "xorl %eax, %eax\n"
    "movl $0x0a0a0a0a, %r9d\n"
    "movd %r9d, %xmm1\n"
    "pshufd $0, %xmm1, %xmm1\n"
    "movl $1, %r11d\n"
    "1: leaq 16(%rax), %r10\n"
    "cmpq %r8, %r10\n"
    "ja 4f\n"
    "movdqu (%rdx,%rax), %xmm0\n"
    "movdqa %xmm0, %xmm2\n"
    "pcmpeqb %xmm1, %xmm2\n"
    "pmovmskb %xmm2, %r9d\n"
    "testl %r9d, %r9d\n"
    "jnz 2f\n"
    "movdqu %xmm0, (%rcx,%rax)\n"
    "movq %r10, %rax\n"
    "jmp 1b\n"
    // The line ends among these sixteen. Two moves that overlap copy four bytes or more.
    "2: bsfl %r9d, %r9d\n"
    "leaq 1(%rax,%r9), %r10\n"
    "cmpl $7, %r9d\n"
    "jb 3f\n"
    "movq %xmm0, (%rcx,%rax)\n"
    "movq -8(%rdx,%r10), %xmm0\n"
    "movq %xmm0, -8(%rcx,%r10)\n"
    "movq %r10, %rax\n"
    "ret\n"
    "3: cmpl $3, %r9d\n"
    "jb 4f\n"
    "movd %xmm0, (%rcx,%rax)\n"
    "movl -4(%rdx,%r10), %r9d\n"
    "movl %r9d, -4(%rcx,%r10)\n"
    "movq %r10, %rax\n"
    "ret\n"
    "4: xorl %r11d, %r11d\n"
    "5: cmpq %r8, %rax\n"
    "je 6f\n"
    "movzbl (%rdx,%rax), %r9d\n"
    "movb %r9b, (%rcx,%rax)\n"
    "incq %rax\n"
    "cmpb $10, %r9b\n"
    "jne 5b\n"
    "6: ret\n"
    "0: testl %r11d, %r11d\n"
    "jnz 4b\n"
    "notq %rax\n"
    "ret\n"
    QX_GUARDED_END("0b"));
// clang-format on

#endif
