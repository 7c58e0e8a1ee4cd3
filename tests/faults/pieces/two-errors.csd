<CsoundSynthesizer>
<CsScore bin="orlo">
#include |part.inc|
#define wrong(value) #1 $value#
i1 = 4 0 2 {
p2 1
p3 1
p4 $wrong(x)
}
i2 = 3 0 2 {
p2 1
p3 $unknown
}
</CsScore>
</CsoundSynthesizer>
