# What doxygen needs to see in a page (docs/Doxyfile): links that lead on within the HTML, and bold text that begins with
# code.
s,](\(\.\./\)*include/KorvaneLaserAlgo\.h),](@ref KorvaneLaserAlgo.h),g
s,](\.\./,](,g
s,\*\*\(`[^*]*\)\*\*,<b>\1</b>,g
