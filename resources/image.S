// The compiled resource script, as it stands in its file.
    .section .rodata
    .globl clipfio_resources
    .globl clipfio_resources_size
    .hidden clipfio_resources
    .hidden clipfio_resources_size
    .balign 16
clipfio_resources:
    .incbin CLIPFIO_RES_IMAGE
clipfio_resources_end:
    .balign 4
clipfio_resources_size:
    .long clipfio_resources_end - clipfio_resources
    .section .note.GNU-stack,"",%progbits
